// Line settings of the serial ports. The two ports are clocked by different timers: port 0 takes an 8-bit divisor and
// a flag, port 1 a 16-bit reload value. The values follow no one formula and are used as listed.
#include "board/exchange.h"
#include "board/rbase_shared_implementation/serial_port.h"

namespace
{

static_assert(sizeof(_DCB) == 8);  // in both widths

struct Divisor {
    unsigned int baudRate;
    unsigned char a;
    unsigned char b;
};

constexpr Divisor port0Divisors[] = {
    {1200, 0x98, 0},  {2400, 0x64, 1},  {4800, 0xB2, 1},  {9600, 0xD9, 1},
    {19200, 0xEC, 1}, {38400, 0xF6, 1}, {62500, 0xFA, 1},
};

constexpr Divisor port1Divisors[] = {
    {110, 0xBB, 0xCA},   {300, 0x78, 0xEC},   {600, 0x3C, 0xF6},   {1200, 0x1F, 0xFB},
    {2400, 0x8F, 0xFD},  {4800, 0xC8, 0xFE},  {9600, 0x64, 0xFF},  {14400, 0x98, 0xFF},
    {19200, 0xB2, 0xFF}, {38400, 0xD8, 0xFF}, {57600, 0xE6, 0xFF}, {62500, 0xE8, 0xFF},
};

template <int Count>
const Divisor *find(const Divisor (&divisors)[Count], unsigned int baudRate)
{
    for (const Divisor &divisor : divisors)
        if (divisor.baudRate == baudRate)
            return &divisor;
    return nullptr;
}

constexpr unsigned char format5 = 5;

unsigned char formatCode(unsigned char format)
{
    switch (format) {
    case 1:
        return 2;
    case 2:
        return 1;
    case format5:
        return 3;
    default:
        return 0;
    }
}

}  // namespace

int RBaseImplementation::SetConfig(_usbSerialPort port, _DCB *settings, _usbPortType type)
{
    if (!settings)
        return Fail(usbErrorNullPointer);
    if (type < usbPortType0 || type > usbPortType3)
        return Fail(usbErrorPortType);
    if (settings->Format == format5 && type != usbPortType0)
        return Fail(usbErrorPortType);
    if (!isSerialPort(port))
        return Fail(usbErrorPortType);
    const Divisor *divisor =
        port == usbSerialPort0 ? find(port0Divisors, settings->BaudRate) : find(port1Divisors, settings->BaudRate);
    if (!divisor)
        return Fail(usbErrorBaudRate);
    const unsigned char options = settings->Options;
    return Tell(onPort(Request::SetConfig, port), type, formatCode(settings->Format), options >> 2 & 3,
                options >> 1 & 1, divisor->a, divisor->b);
}
