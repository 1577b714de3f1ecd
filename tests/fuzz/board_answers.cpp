// Every operation of a board, its arguments and all that the board answers made by the fuzzer. Buffers have exactly the
// size that the header asks for.
#include "tests/fuzz/fuzz_driver.h"

#include <array>
#include <functional>
#include <memory>
#include <tuple>
#include <type_traits>
#include <vector>

namespace fuzz
{

namespace
{

using Operation = std::function<int(SorvaneUSB &, Input &)>;

/// The sizes of an operation's byte buffers, in their order.
using Sizes = std::array<std::size_t, 3>;

/// Memory of exactly this size, filled by the fuzzer.
struct Memory {
    Memory(Input &input, std::size_t size) : bytes(new unsigned char[size]) { input.fill(bytes.get(), size); }
    unsigned char *data() { return bytes.get(); }
    std::unique_ptr<unsigned char[]> bytes;
};

template <class Value>
struct Argument {
    Argument(Input &input, const Sizes &, std::size_t &) : value(input.take<Value>()) {}
    Value value;
};

/// Leads to exactly what is pointed at, now and then nowhere.
template <class Value>
struct Argument<Value *> {
    Argument(Input &input, const Sizes &sizes, std::size_t &next)
        : memory(input, std::is_same_v<Value, unsigned char> ? sizes.at(next++) : sizeof(Value)),
          value(input.upTo(31) == 31 ? nullptr : reinterpret_cast<Value *>(memory.data()))
    {
    }
    Memory memory;
    Value *value;
};

template <class... Parameter>
Operation call(int (SorvaneUSB::*operation)(Parameter...), Sizes sizes = {1, 1, 1})
{
    return [=](SorvaneUSB &board, Input &input) {
        [[maybe_unused]] std::size_t next = 0;
        std::tuple<Argument<Parameter>...> arguments{Argument<Parameter>(input, sizes, next)...};
        return std::apply([&](auto &...argument) { return (board.*operation)(argument.value...); }, arguments);
    };
}

/// Selects one form of an operation that has several.
template <class... Parameter>
constexpr auto form(int (SorvaneUSB::*operation)(Parameter...))
{
    return operation;
}

using Bytes = unsigned char *;
constexpr std::size_t whole = usbLargestAnswer;
constexpr unsigned int answersOfUnboundedReceive = 8;

/// One that is read and written in full, or one that is out of every range.
unsigned int transferLength(Input &input)
{
    const unsigned int length = input.upTo(1500);
    return length == 1500 ? 0xFFFFFF00U : length;
}

template <class Address, class Length>
Operation transfer(int (SorvaneUSB::*operation)(Address, Bytes, Length))
{
    return [=](SorvaneUSB &board, Input &input) {
        const unsigned int length = transferLength(input);
        Memory data(input, length > 1500 ? 0 : length);
        return (board.*operation)(input.take<Address>(), data.data(), length);
    };
}

/// Sends so many items from a buffer of exactly their size.
template <class Item>
Operation send(int (SorvaneUSB::*operation)(_usbSerialPort, Item *, unsigned int))
{
    return [=](SorvaneUSB &board, Input &input) {
        const unsigned int count = input.upTo(600);
        Memory data(input, count * sizeof(Item));
        return (board.*operation)(_usbSerialPort(input.upTo(2)), reinterpret_cast<Item *>(data.data()), count);
    };
}

/// Receives several answers into a buffer that holds just as many as come.
template <class Item>
Operation receive(int (SorvaneUSB::*operation)(_usbSerialPort, Item *, unsigned long *))
{
    return [=](SorvaneUSB &board, Input &input) {
        driver.truthful = true;
        driver.answersLeft = answersOfUnboundedReceive;
        Memory data(input, answersOfUnboundedReceive * whole);
        unsigned long count = 0;
        return (board.*operation)(_usbSerialPort(input.upTo(2)), reinterpret_cast<Item *>(data.data()), &count);
    };
}

template <class Item>
Operation receiveBounded(int (SorvaneUSB::*operation)(_usbSerialPort, Item *, unsigned long *, unsigned long))
{
    return [=](SorvaneUSB &board, Input &input) {
        const unsigned long capacity = input.upTo(1200);
        Memory data(input, capacity * sizeof(Item));
        unsigned long count = 0;
        const int result =
            (board.*operation)(_usbSerialPort(input.upTo(2)), reinterpret_cast<Item *>(data.data()), &count, capacity);
        require(count <= capacity, "no more is counted than fits");
        return result;
    };
}

int polled(SorvaneUSB &board, Input &input, bool bounded)
{
    if (!bounded) {
        driver.truthful = true;
        driver.answersLeft = answersOfUnboundedReceive;
        driver.bytesWithoutData = 2;
    }
    const unsigned long capacity = bounded ? input.upTo(1200) : answersOfUnboundedReceive * whole;
    Memory data(input, capacity);
    unsigned long length = 0;
    unsigned int status = 0;
    const _usbSerialPort port = _usbSerialPort(input.upTo(2));
    const unsigned char slot = input.take<unsigned char>();
    const int result = bounded ? board.ReceivePolledMessage(port, slot, data.data(), &length, &status, capacity)
                               : board.ReceivePolledMessage(port, slot, data.data(), &length, &status);
    require(length <= capacity, "no more is counted than fits");
    return result;
}

int diagnostic(SorvaneUSB &board, Input &input, bool bounded)
{
    const unsigned long length = input.upTo(600);
    const unsigned long capacity = bounded ? input.upTo(300) : whole;
    Memory request(input, length), reply(input, capacity);
    unsigned long size = 0;
    const int result = bounded ? board.ReadDiagnosticData(request.data(), length, reply.data(), &size, capacity)
                               : board.ReadDiagnosticData(request.data(), length, reply.data(), &size);
    require(size <= capacity, "no more is counted than fits");
    return result;
}

int writeDiagnostic(SorvaneUSB &board, Input &input)
{
    const unsigned long length = input.upTo(600);
    Memory data(input, length);
    return board.WriteDiagnosticData(data.data(), length);
}

template <int (SorvaneUSB::*operation)(Bytes, unsigned long)>
int identity(SorvaneUSB &board, Input &input)
{
    const unsigned long capacity = input.upTo(300);
    Memory data(input, capacity);
    return (board.*operation)(data.data(), capacity);
}

int dallasBounded(SorvaneUSB &board, Input &input)
{
    const unsigned long capacity = input.upTo(12);
    Memory data(input, capacity), valid(input, 1);
    return board.GetDallasSerialNumber(data.data(), valid.data(), capacity);
}

int spi(SorvaneUSB &board, Input &input, bool bounded)
{
    const unsigned char bits = input.take<unsigned char>();
    const unsigned long capacity = bounded ? input.upTo(300) : whole;
    Memory sent(input, (bits + 7UL) / 8), received(input, capacity);
    const unsigned char option = input.take<unsigned char>(), wanted = input.take<unsigned char>();
    return bounded ? board.SendSPI(bits, sent.data(), option, wanted, received.data(), capacity)
                   : board.SendSPI(bits, sent.data(), option, wanted, received.data());
}

int sec(SorvaneUSB &board, Input &input, bool bounded)
{
    const unsigned char length = input.take<unsigned char>();
    const unsigned long capacity = bounded ? input.upTo(300) : whole;
    Memory data(input, length), received(input, capacity);
    const unsigned char a = input.take<unsigned char>(), b = input.take<unsigned char>();
    const unsigned char option = input.take<unsigned char>(), wanted = input.take<unsigned char>();
    return bounded ? board.SendSEC(a, b, length, data.data(), option, wanted, received.data(), capacity)
                   : board.SendSEC(a, b, length, data.data(), option, wanted, received.data());
}

int timeoutMessage(SorvaneUSB &board, Input &input)
{
    const unsigned char length = input.take<unsigned char>();
    Memory message(input, length);
    return board.SetTimeoutMessage(_usbSerialPort(input.upTo(2)), message.data(), length, input.take<float>());
}

int recordedInputs(SorvaneUSB &board, Input &input)
{
    Memory inputs(input, 4 * sizeof(_usbInputBitId));
    return board.ConfigureRecordingInputs(reinterpret_cast<_usbInputBitId *>(inputs.data()),
                                          input.take<unsigned long>(), input.take<unsigned short>());
}

int anyRequest(SorvaneUSB &board, Input &input)
{
    const unsigned long length = input.upTo(600);
    Memory sent(input, length), received(input, whole);
    unsigned long count = 0;
    return board.PerformUSBIO(input.take<unsigned char>(), static_cast<int>(input.upTo(7)), sent.data(), length,
                              received.data(), &count);
}

int openAgain(SorvaneUSB &board, Input &input)
{
    const SorvaneUSB copy(board);
    board.close();
    const int result = board.InitPort(static_cast<int>(input.upTo(17)) - 1);
    if (!result)
        board = copy;
    return result;
}

template <int (*operation)(SorvaneUSB &, Input &, bool), bool bounded>
int inForm(SorvaneUSB &board, Input &input)
{
    return operation(board, input, bounded);
}

using U = SorvaneUSB;

Operation asOperation(Operation operation)
{
    return operation;
}

template <class... Parameter>
Operation asOperation(int (SorvaneUSB::*operation)(Parameter...))
{
    return call(operation);
}

template <class... Entry>
std::vector<Operation> listOf(Entry... entry)
{
    return {asOperation(entry)...};
}

// New ones at the end: the kept inputs name operations by their place.
const std::vector<Operation> operations = listOf(
    &U::GetFittedBoard, &U::GetBoardSpeed, call(form<Bytes>(&U::Get8051Version), {whole}),
    call(form<Bytes>(&U::GetPICVersion), {whole}), call(form<Bytes, Bytes>(&U::GetDallasSerialNumber), {whole, 1}),
    call(form<Bytes>(&U::GetPICSerialNumber), {whole}), call(&U::SetPICSerialNumber, {8}), &U::Download8051Software,
    &U::GetInputBit, call(form<Bytes>(&U::GetInputs), {5}), &U::SetOutputBit, call(&U::SetOutputs, {5}),
    call(form<usbInput *>(&U::GetInputs)), &U::InputMultiplexing, &U::GetMultiplexedInputs, &U::GetChangedInputs,
    &U::GetRawInputs, &U::ModifyOutputs, &U::SetOnPeriodOutputs, &U::SetOffPeriodOutputs, &U::SetOnPeriodOutputBit,
    &U::SetOffPeriodOutputBit, &U::SetOutputBrightness, &U::PulseOutput, &U::PulseOffOutput, &U::PulseOutputResult,
    &U::ConfigurePulsedInput, &U::ConfigurePulsedInputEx, &U::BeginPulsedInputCheck, &U::EndPulsedInputCheck,
    &U::ResetPulsedInputCounter, &U::DecrementPulsedInputCounter, &U::ReadPulsedInputCounter, &U::GetPulsedInputStatus,
    &U::ReleaseParallelHopperCoins, &U::ReleaseParallelHopperCoinsEx, &U::GetParallelHopperStatus,
    &U::StopHopperCoinRelease, &U::ConfigureReels, &U::ConfigureReelsEx, &U::SpinReels, &U::SpinRampUp,
    &U::SpinRampDown, &U::SetDutyCycle, &U::GetReelStatus, &U::GetReelStatusEx, &U::ReelSynchroniseEnable,
    recordedInputs, &U::StartRecordingInputs, &U::GetRecordingStatus, inForm<diagnostic, false>,
    inForm<diagnostic, true>, writeDiagnostic, &U::SetConfig, send(&U::Send),
    receive(form<_usbSerialPort, Bytes, unsigned long *>(&U::Receive)),
    receiveBounded(form<_usbSerialPort, Bytes, unsigned long *, unsigned long>(&U::Receive)),
    &U::ReceiveByteWithTimestamp, send(&U::Send9BitData),
    receive(form<_usbSerialPort, unsigned short *, unsigned long *>(&U::Receive9BitData)),
    receiveBounded(form<_usbSerialPort, unsigned short *, unsigned long *, unsigned long>(&U::Receive9BitData)),
    &U::ReceiveByteWithTimestamp9BitData, timeoutMessage, &U::GetParityErrors, &U::SetSASMachineAddress,
    &U::SetSASAutoReply, &U::SetSASBusy, &U::GetSASMessageStatus, &U::ConfigureCCTalkPort, &U::ConfigureRS232Poll,
    &U::SetPolledHostTimeout, &U::EmptyPolledBuffer, inForm<polled, false>, inForm<polled, true>,
    &U::DeletePolledMessage, &U::EnableSPI, &U::DisableSPI, inForm<spi, false>, inForm<spi, true>, inForm<sec, false>,
    inForm<sec, true>, call(form<R20EEPROM *>(&U::ConfigureEEPROM)), &U::CheckEEPROM, transfer(&U::ReadEEPROM),
    transfer(&U::WriteEEPROM), transfer(&U::ReadSRAM), transfer(&U::WriteSRAM), transfer(&U::ReadLargeSRAM),
    transfer(&U::WriteLargeSRAM), &U::SetClock, &U::GetClock, &U::NextSecuritySwitchRead, &U::StartSecuritySwitchRead,
    &U::ClearSecuritySwitches, &U::ReadAndResetSecuritySwitchFlags, &U::ReadAndResetBatteryFailFlag,
    &U::CachedReadAndResetSecuritySwitchFlags, &U::EnableRandomNumberGenerator, &U::DisableRandomNumberGenerator,
    &U::GetRandomNumber, &U::ReadAndResetRTCFailure, &U::ReadClockAtBatteryFailure, anyRequest,
    identity<&U::Get8051Version>, identity<&U::GetPICVersion>, identity<&U::GetPICSerialNumber>, dallasBounded,
    openAgain, call(&U::GetProductVersion, {2}), call(&U::GetDllVersion, {3}), &U::InitUSBBoard, &U::init);

}  // namespace

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace fuzz;
    Input input(data, size);
    driver = {};
    driver.input = &input;
    driver.model = input.take<std::uint8_t>();
    driver.speed = input.take<std::uint8_t>();
    driver.endlessBytes = input.take<std::uint8_t>() % 8;
    SorvaneUSB board;
    openBoard(board, static_cast<int>(input.upTo(15)));
    for (int calls = 0; calls < 20 && !input.ended(); ++calls) {
        const int result = operations[input.take<std::uint8_t>() % operations.size()](board, input);
        require(result == 0 || result == 1, "an operation returns 0 or 1");
        driver.truthful = false;
        driver.answersLeft = ~0U;
        driver.bytesWithoutData = 0;
        require(usbErrorText(board.GetLastError()) != nullptr, "every code has a text");
    }
    return 0;
}
