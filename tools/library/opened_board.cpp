#include "tools/library/opened_board.h"

#include "api/sorvaneusb.h"

#include <memory>

namespace
{

class LibraryBoard final : public tools::OpenedBoard
{
public:
    int open(int device) { return board_.InitPort(device); }

    int setOutput(unsigned int output, unsigned int state) override
    {
        return board_.SetOutputBit(_usbOutputBitId(output), state);
    }
    int flashOutput(unsigned int output) override
    {
        const auto byte = _usbOutputId(output / 8);
        const int bit = static_cast<int>(output % 8);
        return board_.SetOnPeriodOutputBit(byte, bit, 1) && board_.SetOffPeriodOutputBit(byte, bit, 0);
    }
    int checkEEPROM(R20EEPROM &found) override { return board_.CheckEEPROM(&found); }
    int configureEEPROM(const R20EEPROM &eeprom) override { return board_.ConfigureEEPROM(&eeprom); }
    int readEEPROM(unsigned int address, unsigned char *data, unsigned int length) override
    {
        return board_.ReadEEPROM(static_cast<unsigned short>(address), data, length);
    }
    int writeEEPROM(unsigned int address, unsigned char *data, unsigned int length) override
    {
        return board_.WriteEEPROM(static_cast<unsigned short>(address), data, length);
    }
    unsigned int highestEEPROMAddress() override
    {
        // A read of nothing sends nothing, and the library refuses it behind the highest address.
        unsigned char nothing = 0;
        unsigned int within = 0, beyond = 0x10000;
        while (beyond - within > 1) {
            const unsigned int address = (within + beyond) / 2;
            (address < 8 || board_.ReadEEPROM(static_cast<unsigned short>(address), &nothing, 0) ? within : beyond) =
                address;
        }
        return within < 8 ? 0 : within;
    }
    int lastError() override { return board_.GetLastError(); }

private:
    SorvaneUSB board_;
};

}  // namespace

extern "C" SORVANE_API tools::OpenedBoard *sorvane_open_board(int device, int *code);

tools::OpenedBoard *sorvane_open_board(int device, int *code)
{
    auto board = std::make_unique<LibraryBoard>();
    if (board->open(device))
        return board.release();
    *code = board->lastError();
    return nullptr;
}
