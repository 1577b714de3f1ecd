// Preparation of a freshly opened board, and opening by the board number that a board reports on its inputs.
#include "api/board_preparation.h"

#include "api/preparation_lock.h"
#include "api/sorvaneusb.h"
#include "board/rbase_implementation.h"

int prepareBoard(RBaseImplementation &implementation, int deviceNo)
{
    const PreparationLock lock(implementation.deviceHandle);
    const int downloaded = makeFirmwareRun(implementation);
    if (implementation.EEPROMConfigured(deviceNo) || !downloaded)
        return downloaded;
    R20EEPROM fitted;
    if (!implementation.CheckEEPROM(&fitted))
        return 0;
    return implementation.ConfigureEEPROM(&fitted);
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
