#include "bench/operations.h"

#include <cstring>
#include <stdexcept>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <unistd.h>

namespace bench
{

namespace
{

std::vector<unsigned char> counting(unsigned int count)
{
    std::vector<unsigned char> bytes;
    for (unsigned int k = 0; k < count; ++k)
        bytes.push_back(static_cast<unsigned char>(k + 1));
    return bytes;
}

template <class Record>
Record *as(result &result)
{
    return static_cast<Record *>(static_cast<void *>(result.bytes));
}

}  // namespace

const std::vector<Operation> &operations()
{
    static const std::vector<Operation> all = {
        {"nothing", {}, [](SorvaneUSB &, result &) { return 1; }},
        {"GetInputs", {counting(5)}, [](SorvaneUSB &board, result &result) { return board.GetInputs(result.bytes); }},
        {"GetInputBit",
         {counting(5)},
         [](SorvaneUSB &board, result &result) { return board.GetInputBit(usbInput12, &result.number); }},
        {"GetClock", {counting(4)}, [](SorvaneUSB &board, result &result) { return board.GetClock(&result.time); }},
        {"GetParallelHopperStatus",
         {{4, 9}},
         [](SorvaneUSB &board, result &result) {
             return board.GetParallelHopperStatus(usbInput5, as<ReleaseHopperCoinsStatus>(result), result.bytes + 4);
         }},
        {"SetConfig",
         {},
         [](SorvaneUSB &board, result &) {
             _DCB settings = {9600, 0, 0};
             return board.SetConfig(usbSerialPort0, &settings, usbPortType1);
         }},
        {"SetOutputBit", {}, [](SorvaneUSB &board, result &) { return board.SetOutputBit(usbOutput12, 1); }},
        {"Send, 60 bytes",
         {},
         [](SorvaneUSB &board, result &result) { return board.Send(usbSerialPort1, result.bytes, 60); }},
        {"ReadEEPROM, 58 bytes",
         {counting(58)},
         [](SorvaneUSB &board, result &result) { return board.ReadEEPROM(16, result.bytes, 58); }},
        {"ReadSRAM, 58 bytes",
         {counting(58)},
         [](SorvaneUSB &board, result &result) { return board.ReadSRAM(16, result.bytes, 58); }},
        {"WriteSRAM, 55 bytes",
         {},
         [](SorvaneUSB &board, result &result) { return board.WriteSRAM(16, result.bytes, 55); }},
        {"SetOnPeriodOutputBit",
         {},
         [](SorvaneUSB &board, result &) { return board.SetOnPeriodOutputBit(usbOutputByte1, 4, 1); }},
        {"PulseOutput", {}, [](SorvaneUSB &board, result &) { return board.PulseOutput(7, 10); }},
        {"GetReelStatusEx",
         {counting(18)},
         [](SorvaneUSB &board, result &result) { return board.GetReelStatusEx(as<ReelStatusEx>(result)); }},
        {"GetRecordingStatus",
         {counting(5)},
         [](SorvaneUSB &board, result &result) {
             return board.GetRecordingStatus(as<RecordingStatus>(result), result.halves + 2, result.halves + 3);
         },
         true},
        {"Receive, 10 bytes",
         {counting(10), 2},
         [](SorvaneUSB &board, result &result) {
             unsigned long length;
             return board.Receive(usbSerialPort1, result.bytes, &length);
         }},
        {"SetTimeoutMessage",
         {},
         [](SorvaneUSB &board, result &result) {
             return board.SetTimeoutMessage(usbSerialPort1, result.bytes, 8, 1.5F);
         }},
        {"ReceivePolledMessage",
         {{0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
         [](SorvaneUSB &board, result &result) {
             unsigned long length;
             unsigned int status;
             return board.ReceivePolledMessage(usbSerialPort1, 0, result.bytes, &length, &status);
         }},
        {"GetSASMessageStatus",
         {{1}},
         [](SorvaneUSB &board, result &result) { return board.GetSASMessageStatus(usbSerialPort1, &result.number); },
         true},
        {"SendSPI, 32 bits",
         {counting(4)},
         [](SorvaneUSB &board, result &result) { return board.SendSPI(32, result.bytes, 0, 32, result.bytes); }},
        {"GetRandomNumber",
         {counting(2)},
         [](SorvaneUSB &board, result &result) { return board.GetRandomNumber(result.halves); }},
        {"GetPICVersion",
         {counting(8)},
         [](SorvaneUSB &board, result &result) { return board.GetPICVersion(result.bytes); }},
        {"open a ready board", {{1}}, [](SorvaneUSB &board, result &) { return board.InitPort(0); }, false, true},
    };
    return all;
}

Subject::Subject(int model) : model(model)
{
    driver_board(model);
    open();
    // Ready is a board whose chip some process has configured; the first opening here looks for it.
    R20EEPROM chip = E24LC64;
    if (!board.ConfigureEEPROM(&chip))
        throw std::runtime_error("the library does not open the board");
    handBoard.locks = ::semget(::ftok("/tmp/Sem_R20Mutex", 1), 0, 0);
    if (handBoard.locks == -1)
        throw std::runtime_error("the library has made no locks");
    handBoard.file = -1;
    handBoard.eeprom_ready = 1;
}

void Subject::open()
{
    const unsigned char firmwareRuns = 1;
    driver_answer(&firmwareRuns, 1, 0, 0);
    board.InitPort(0);
}

void Subject::makeReady(const Operation &operation, bool keepExchanges)
{
    driver_board(model);
    if (operation.opens) {
        board.close();
        ::close(handBoard.file);
        handBoard.file = -1;
    } else if (unsigned char type; !board.GetFittedBoard(&type)) {
        open();
    }
    for (unsigned int k = 0; k < sizeof yielded.bytes; ++k)
        yielded.bytes[k] = static_cast<unsigned char>(k);
    driver_answer(operation.answer.bytes.data(), operation.answer.bytes.size(), operation.answer.period,
                  keepExchanges ? 1 : 0);
}

const hand_operation &Subject::byHand(const Operation &operation) const
{
    for (const hand_operation *hand = model == 1 ? by_hand_packet : by_hand_record; hand->name; ++hand)
        if (std::strcmp(hand->name, operation.name) == 0)
            return *hand;
    throw std::runtime_error(std::string(operation.name) + " is not written by hand");
}

}  // namespace bench
