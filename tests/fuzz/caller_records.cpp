// The records that a caller fills in: whatever stands in them, what is sent keeps to the lengths that the board knows,
// nothing is read behind the record, and nothing but a time that is too long is changed in it.
#include "tests/fuzz/fuzz_driver.h"

#include <memory>

namespace fuzz
{

namespace
{

/// A record of exactly its size, its content made by the fuzzer.
template <class Record>
struct Made {
    explicit Made(Input &input) : before(input.take<Record>()), now(new Record(before)) {}
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): padding is not to be touched either
    bool unchanged() const { return std::memcmp(now.get(), &before, sizeof before) == 0; }
    Record before;
    std::unique_ptr<Record> now;
};

void requireSent(int result, unsigned long least, unsigned long most)
{
    require(driver.exchanges == (result ? 1U : 0U), "an accepted record is sent once, a refused one never");
    require(!result || (driver.sentBytes >= least && driver.sentBytes <= most),
            "the payload has a length of its request");
}

template <class Config>
void pollSlot(SorvaneUSB &board, Input &input, int (SorvaneUSB::*operation)(_usbSerialPort, Config *))
{
    Made<Config> config(input);
    const int result = (board.*operation)(_usbSerialPort(input.upTo(2)), config.now.get());
    requireSent(result, 13, 63);
    require(!result || config.now->timeMs <= 2550, "a time that is too long is replaced");
    config.now->timeMs = config.before.timeMs;
    require(config.unchanged(), "nothing else is changed in the record");
}

void ramp(SorvaneUSB &board, Input &input, int (SorvaneUSB::*operation)(unsigned char, usbRampTable))
{
    Made<usbRampTable> table(input);
    const int result = (board.*operation)(static_cast<unsigned char>(input.upTo(3)), *table.now);
    requireSent(result, 2, 62);
    require(!result || driver.sentBytes == 2UL + table.before.entryCount, "every entry is sent");
}

void lineSettings(SorvaneUSB &board, Input &input)
{
    constexpr unsigned int rates[] = {110, 300, 600, 1200, 2400, 4800, 9600, 14400, 19200, 38400, 57600, 62500};
    Made<_DCB> settings(input);
    if (const unsigned int choice = input.upTo(12); choice < 12)
        settings.before.BaudRate = settings.now->BaudRate = rates[choice];
    requireSent(board.SetConfig(_usbSerialPort(input.upTo(2)), settings.now.get(), _usbPortType(input.upTo(4))), 6, 6);
    require(settings.unchanged(), "the settings are only read");
}

void eeprom(SorvaneUSB &board, Input &input)
{
    Made<R20EEPROM> chip(input);
    requireSent(board.ConfigureEEPROM(chip.now.get()), 5, 5);
    require(chip.unchanged(), "the description is only read");
    driver.exchanges = 0;
    const unsigned int length = input.upTo(70);
    const unsigned short address = input.take<unsigned short>();
    std::unique_ptr<unsigned char[]> data(new unsigned char[length]());
    const int result = board.WriteEEPROM(address, data.get(), length);
    require(result == (address >= 8 && address + length <= chip.before.maxAddress), "maxAddress bounds a transfer");
}

}  // namespace

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace fuzz;
    Input input(data, size);
    Input wellBehaved(nullptr, 0);
    driver = {};
    driver.input = &wellBehaved;
    driver.endlessBytes = 1;
    driver.model = 1 + input.upTo(2);
    driver.speed = 1 + input.upTo(1);
    SorvaneUSB board;
    openBoard(board, 0);
    switch (input.upTo(5)) {
    case 0:
        pollSlot(board, input, &SorvaneUSB::ConfigureCCTalkPort);
        break;
    case 1:
        pollSlot(board, input, &SorvaneUSB::ConfigureRS232Poll);
        break;
    case 2:
        ramp(board, input, &SorvaneUSB::SpinRampUp);
        break;
    case 3:
        ramp(board, input, &SorvaneUSB::SpinRampDown);
        break;
    case 4:
        lineSettings(board, input);
        break;
    default:
        eeprom(board, input);
    }
    return 0;
}
