// The board has two serial ports. Their requests are the same, on a pipe for each port.
#ifndef SORVANE_BOARD_SERIAL_PORT_H
#define SORVANE_BOARD_SERIAL_PORT_H

#include "api/sorvaneusb_types.h"

constexpr bool isSerialPort(_usbSerialPort port)
{
    return port <= usbSerialPort1;
}

#endif
