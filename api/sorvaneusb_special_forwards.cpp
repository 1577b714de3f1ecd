// The operations that are not plain forwards: some need no board, some answer in a way of their own without one, some
// go to an operation of another name.
#include "api/sorvaneusb.h"
#include "board/rbase_implementation.h"

#include <climits>
#include <cstring>

// Without any board

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

// Without a board they answer, or fail with a code, where all others return 0 and leave the error store as it was.

/// The null pointer is noticed first; without a board the speed is not touched.
int SorvaneUSB::GetBoardSpeed(unsigned char *speed)
{
    if (!speed)
        return RBaseImplementation::Fail(usbErrorNullPointer);
    return implementation ? implementation->GetBoardSpeed(speed) : 1;
}

int SorvaneUSB::SetSASMachineAddress(_usbSerialPort port, unsigned char address)
{
    return implementation ? implementation->SetSASMachineAddress(port, address)
                          : RBaseImplementation::Fail(usbErrorNotSupported);
}

int SorvaneUSB::SetSASAutoReply(_usbSerialPort port, unsigned int reply, unsigned char value)
{
    return implementation ? implementation->SetSASAutoReply(port, reply, value)
                          : RBaseImplementation::Fail(usbErrorNotSupported);
}

int SorvaneUSB::SetSASBusy(_usbSerialPort port, unsigned int busy)
{
    return implementation ? implementation->SetSASBusy(port, busy) : RBaseImplementation::Fail(usbErrorNotSupported);
}

int SorvaneUSB::GetSASMessageStatus(_usbSerialPort port, unsigned int *status)
{
    return implementation ? implementation->GetSASMessageStatus(port, status)
                          : RBaseImplementation::Fail(usbErrorNotSupported);
}

// Under another name

int SorvaneUSB::GetFittedBoard(unsigned char *type)
{
    return implementation ? implementation->GetBoardType(type) : 0;
}

int SorvaneUSB::ConfigureReels(unsigned char reels, unsigned char reelSetting, unsigned char reelOption)
{
    return implementation ? implementation->ConfigureReelsEx(reels, reelSetting, reelOption) : 0;
}

int SorvaneUSB::ReadLargeSRAM(unsigned long address, unsigned char *data, unsigned long length)
{
    return implementation ? implementation->ReadSRAM(address, data, length) : 0;
}

int SorvaneUSB::WriteLargeSRAM(unsigned long address, unsigned char *data, unsigned long length)
{
    // A length of more than 32 bits is beyond every board: the largest one stands for it and is refused as such.
    const unsigned int n = length > UINT_MAX ? UINT_MAX : static_cast<unsigned int>(length);
    return implementation ? implementation->WriteSRAM(address, data, n) : 0;
}
