// The message that a serial port's firmware keeps for its timeout behaviour, with a time in units of 30 ms.
#include "board/exchange.h"
#include "board/rbase_shared_implementation/exact_seconds.h"
#include "board/rbase_shared_implementation/serial_port.h"

namespace
{

constexpr unsigned char longestMessage = 60;
constexpr double longestTime = 7.65;

}  // namespace

int RBaseImplementation::SetTimeoutMessage(_usbSerialPort port, unsigned char *message, unsigned char length,
                                           float seconds)
{
    if (length > longestMessage)
        return Fail(usbErrorLength);
    if (!(seconds >= 0 && static_cast<double>(seconds) <= longestTime))  // also refuses what is not a number
        return Fail(usbErrorParameter);
    if (!message)
        return Fail(usbErrorNullPointer);
    Payload<2 + longestMessage> payload(unitsOf30ms(seconds), length);
    payload.append(message, length);
    if (!isSerialPort(port))
        return Fail(usbErrorParameter);
    return TellWith(onPort(Request::SetTimeoutMessage, port), payload.bytes, payload.length);
}
