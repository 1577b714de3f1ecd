// The input recorder, which writes into the board's SRAM by itself, and the diagnostic channel.
#include "board/exchange.h"
#include "board/transfer_range.h"

namespace
{

constexpr int recordedInputs = 4;
constexpr unsigned long lastRecorderOffset = 0x73FFE;
constexpr unsigned long recorderBase = 0x4000;
constexpr int pageShift = 14;
constexpr unsigned char pageOffsetHighMask = 0x3F;

}  // namespace

int RBaseImplementation::ConfigureRecordingInputs(_usbInputBitId *recordInputs, unsigned long recordAddress,
                                                  unsigned short recordLength)
{
    if (!recordInputs)
        return Fail(usbErrorNullPointer);
    int used = 0;
    for (int k = 0; k < recordedInputs; ++k) {
        if (recordInputs[k] == usbInputUnused)
            continue;
        if (recordInputs[k] > usbInput23)
            return Fail(usbErrorParameter);
        ++used;
    }
    if (used == 0 || !withinLimit(recordAddress, recordLength, lastRecorderOffset))
        return Fail(usbErrorParameter);
    const unsigned long place = recordAddress + recorderBase;
    return Tell(Request::ConfigureRecordingInputs, recordInputs[0], recordInputs[1], recordInputs[2], recordInputs[3],
                place >> pageShift, high(place) & pageOffsetHighMask, low(place), high(recordLength),
                low(recordLength));
}

int RBaseImplementation::StartRecordingInputs(unsigned short startValue)
{
    if (startValue < 10 || startValue > 15000)
        return Fail(usbErrorParameter);
    return Tell(Request::StartRecordingInputs, high(startValue), low(startValue));
}

int RBaseImplementation::GetRecordingStatus(RecordingStatus *status, unsigned short *valueA, unsigned short *valueB)
{
    if (!status || !valueA || !valueB)
        return Fail(usbErrorNullPointer);
    Response<5> response;
    if (!Ask(Request::GetRecordingStatus, response))
        return 0;
    *status = static_cast<RecordingStatus>(response.u8(0));
    *valueA = response.u16be(1);
    *valueB = response.u16be(3);
    return 1;
}

int RBaseImplementation::ReadDiagnosticData(unsigned char *requestData, unsigned long requestLength,
                                            unsigned char *reply, unsigned long *replySize)
{
    if (!requestData || !reply || !replySize)
        return Fail(usbErrorNullPointer);
    Response<0> response;
    if (!AskWith(Request::ReadDiagnosticData, response, requestData, requestLength))
        return 0;
    *replySize = response.count;
    std::memcpy(reply, response.bytes, response.count);
    return 1;
}

int RBaseImplementation::ReadDiagnosticData(unsigned char *requestData, unsigned long requestLength,
                                            unsigned char *reply, unsigned long *replySize, unsigned long capacity)
{
    unsigned char answer[usbLargestAnswer];
    unsigned long count = 0;
    if (!ReadDiagnosticData(requestData, requestLength, reply ? answer : nullptr, replySize ? &count : nullptr))
        return 0;
    // NOLINTBEGIN(clang-analyzer-core.*): the other form has refused null pointers
    *replySize = fitting(count, capacity);
    std::memcpy(reply, answer, *replySize);
    // NOLINTEND(clang-analyzer-core.*)
    return 1;
}

int RBaseImplementation::WriteDiagnosticData(unsigned char *diagnosticData, unsigned long diagnosticLength)
{
    if (!diagnosticData)
        return Fail(usbErrorNullPointer);
    return TellWith(Request::WriteDiagnosticData, diagnosticData, diagnosticLength);
}
