// The SAS protocol, which the firmware speaks on a serial port.
#include "board/exchange.h"
#include "board/rbase_shared_implementation/serial_port.h"

namespace
{

constexpr unsigned char lastMachineAddress = 127;

}  // namespace

int RBaseImplementation::SetSASMachineAddress(_usbSerialPort port, unsigned char address)
{
    if (address > lastMachineAddress || !isSerialPort(port))
        return Fail(usbErrorParameter);
    return Tell(onPort(Request::SetSASMachineAddress, port), address);
}

int RBaseImplementation::SetSASAutoReply(_usbSerialPort port, unsigned int reply, unsigned char value)
{
    if (!isSerialPort(port))
        return Fail(usbErrorParameter);
    return Tell(onPort(Request::SetSASAutoReply, port), reply, value);
}

int RBaseImplementation::SetSASBusy(_usbSerialPort port, unsigned int busy)
{
    return SetSASAutoReply(port, busy, 0);
}

int RBaseImplementation::GetSASMessageStatus(_usbSerialPort port, unsigned int *status)
{
    if (!status)
        return Fail(usbErrorNullPointer);
    if (!isSerialPort(port))
        return Fail(usbErrorParameter);
    Response<1> response;
    if (!Ask(onPort(Request::GetSASMessageStatus, port), response))
        return 0;
    *status = response.u8(0);
    return 1;
}
