// Life of a SorvaneUSB: opening, sharing and closing the implementation object of a board.
#include "api/sorvaneusb.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <unistd.h>

#include "api/board_preparation.h"
#include "board/r20_implementation.h"
#include "board/r20s_implementation.h"
#include "board/r35_implementation.h"
#include "board/rbase_shared_implementation/shared_board_state.h"

SorvaneUSB::SorvaneUSB() : implementation(nullptr) {}

SorvaneUSB::~SorvaneUSB()
{
    close();
}

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

int SorvaneUSB::close()
{
    if (implementation)
        implementation->decrementReferenceCount();
    implementation = nullptr;
    return 1;
}

namespace
{

RBaseImplementation *newImplementation(int type, SorvaneUSB *owner, int deviceHandle, int speed, int deviceNo)
{
    switch (type) {
    case 1:
        return new (std::nothrow) R20Implementation(owner, deviceHandle, speed, deviceNo);
    case 2:
        return new (std::nothrow) R20s_Implementation(owner, deviceHandle, speed, deviceNo);
    case 3:
        return new (std::nothrow) R35_Implementation(owner, deviceHandle, speed, deviceNo);
    default:
        return nullptr;
    }
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
    return prepareBoard(*implementation, deviceNo);
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

_usbErrorCode SorvaneUSB::GetLastError()
{
    return RBaseImplementation::GetLastError();
}

int SorvaneUSB::ClearErrors()
{
    return RBaseImplementation::ClearErrors();
}

namespace
{

int copyText(unsigned char *destination, const char *text)
{
    if (!destination)
        return RBaseImplementation::Fail(usbErrorNullPointer);
    std::memcpy(destination, text, std::strlen(text) + 1);
    return 1;
}

}  // namespace

int SorvaneUSB::GetProductVersion(unsigned char *version)
{
    return copyText(version, "3");
}

int SorvaneUSB::GetDllVersion(unsigned char *version)
{
    return copyText(version, "13");
}
