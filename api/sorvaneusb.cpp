// Life of a SorvaneUSB: a board is opened, by device number or by the number that it shows on its inputs, made ready,
// shared by copies, and closed by the last of them.
#include "api/sorvaneusb.h"

#include "api/preparation_lock.h"
#include "board/exchange.h"
#include "board/r20_implementation.h"
#include "board/r20s_implementation.h"
#include "board/r35_implementation.h"
#include "board/rbase_shared_implementation/shared_board_state.h"

#include <cstdio>
#include <fcntl.h>
#include <new>
#include <unistd.h>

SorvaneUSB::SorvaneUSB() : implementation(nullptr) {}

// Opening

namespace
{

RBaseImplementation *newImplementation(int type, SorvaneUSB *owner, int deviceHandle, int speed, int deviceNo)
{
    switch (type) {
    case typeR20:
        return new (std::nothrow) R20Implementation(owner, deviceHandle, speed, deviceNo);
    case typeR20s:
        return new (std::nothrow) R20s_Implementation(owner, deviceHandle, speed, deviceNo);
    case typeR35:
        return new (std::nothrow) R35_Implementation(owner, deviceHandle, speed, deviceNo);
    default:
        return nullptr;
    }
}

/// Asks whether the firmware runs, and loads it only where it does not. Hold the board's PreparationLock.
int makeFirmwareRun(RBaseImplementation &board)
{
    Response<1> response;
    if (!board.Ask(Request::FirmwareRuns, response))
        return 0;
    const bool runs = response.u8(0) == 1;  // an answer without a byte reads as 0: it does not run
    if (!runs &&
        !(board.Tell(Request::BeginFirmware) && board.Download8051Software() && board.Tell(Request::EndFirmware)))
        return 0;
    board.firmwareLoaded = 1;
    return 1;
}

/// Makes the firmware of a freshly opened board run and, the first time on this machine, tells it the type of the
/// EEPROM that it carries.
int makeReady(RBaseImplementation &board)
{
    const PreparationLock lock(board.deviceHandle);
    const int runs = makeFirmwareRun(board);
    if (board.EEPROMConfigured(board.GetDeviceNo()) || !runs)
        return runs;
    R20EEPROM fitted;
    return board.CheckEEPROM(&fitted) && board.ConfigureEEPROM(&fitted);
}

}  // namespace

int SorvaneUSB::InitPort(int deviceNo)
{
    if (deviceNo < 0 || deviceNo >= deviceCount)  // no table has an entry for it: as good as missing
        return 0;
    const int type = ::GetBoardType(deviceNo);
    if (type < 0)
        return 0;
    const int speed = ::LocalGetBoardSpeed(deviceNo);
    if (speed < 0)
        return 0;
    close();
    char path[32];
    std::snprintf(path, sizeof path, "/dev/Vexa_%d", deviceNo);
    const int deviceHandle = ::open(path, O_RDWR | O_CLOEXEC);
    if (deviceHandle == -1)
        return 0;
    implementation = newImplementation(type, this, deviceHandle, speed, deviceNo);
    if (!implementation) {
        ::close(deviceHandle);
        return 0;
    }
    return makeReady(*implementation);
}

int SorvaneUSB::init(int)
{
    int result = 0;
    for (int deviceNo = 0; deviceNo < deviceCount && !result; ++deviceNo) {
        ClearErrors();
        result = InitPort(deviceNo);
    }
    return result;
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

int SorvaneUSB::Download8051Software()
{
    if (!implementation)
        return 0;
    const PreparationLock lock(implementation->deviceHandle);
    return makeFirmwareRun(*implementation);
}

// Sharing: all copies use the same board.

SorvaneUSB::SorvaneUSB(const SorvaneUSB &other) : implementation(other.implementation)
{
    if (implementation)
        implementation->incrementReferenceCount();
}

SorvaneUSB::SorvaneUSB(SorvaneUSB &other) : SorvaneUSB(static_cast<const SorvaneUSB &>(other)) {}

SorvaneUSB &SorvaneUSB::operator=(const SorvaneUSB &other)
{
    if (&other == this)
        return *this;
    // The other's board gains its holder before ours loses one: they may be the same board.
    RBaseImplementation *released = implementation;
    implementation = other.implementation;
    if (implementation)
        implementation->incrementReferenceCount();
    if (released)
        released->decrementReferenceCount();
    return *this;
}

SorvaneUSB &SorvaneUSB::operator=(SorvaneUSB &other)  // NOLINT(bugprone-unhandled-self-assignment): the other has it
{
    return *this = static_cast<const SorvaneUSB &>(other);
}

// Closing

int SorvaneUSB::close()
{
    if (implementation)
        implementation->decrementReferenceCount();
    implementation = nullptr;
    return 1;
}

SorvaneUSB::~SorvaneUSB()
{
    close();
}
