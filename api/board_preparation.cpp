// Preparation of a freshly opened board, and opening by the board number that a board reports on its inputs.
#include "api/board_preparation.h"

#include "api/sorvaneusb.h"
#include "board/rbase_implementation.h"

int prepareBoard(SorvaneUSB &board, RBaseImplementation &implementation, int deviceNo)
{
    const int downloaded = board.Download8051Software();
    if (implementation.EEPROMConfigured(deviceNo) || !downloaded)
        return downloaded;
    R20EEPROM fitted;
    if (!board.CheckEEPROM(&fitted))
        return 0;
    return board.ConfigureEEPROM(&fitted);
}

namespace
{

constexpr unsigned char lastBoardNumber = 15;
constexpr int devicesWithBoardNumber = 8;
constexpr unsigned char boardNumberMask = 7;  // inputs 24 to 26

}  // namespace

int SorvaneUSB::InitUSBBoard(unsigned char boardNumber)
{
    if (boardNumber > lastBoardNumber)
        return RBaseImplementation::Fail(usbErrorParameter);
    for (int deviceNo = 0; deviceNo < devicesWithBoardNumber; ++deviceNo) {
        usbInput inputs;
        if (!InitPort(deviceNo) || !GetInputs(&inputs))
            continue;
        if ((inputs.bits[3] & boardNumberMask) == boardNumber)
            return 1;
        close();
    }
    return 0;
}
