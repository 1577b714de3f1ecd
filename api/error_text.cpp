// Codes as sentences for a program's log. The status of a board or its driver passes through as it is, and may equal
// any code but 0.
#include "api/sorvaneusb.h"

const char *usbErrorText(int code)
{
    switch (code) {
    case usbErrorNone:
        return "No error is stored. If opening failed, no board was found or it could not be opened: check that one is "
               "plugged in (/sys/class/Vexa) and that its node /dev/Vexa_<n> may be read and written, and open it by "
               "its number to learn more. If another operation failed, no board is open.";
    case usbErrorDataLength:
        return "The number of bits or bytes to send is out of range: an SPI transfer sends 1 to 160 bits and "
               "receives up to 160, a SEC message takes up to 16 bytes; or the board's own status.";
    case usbErrorPipeNumber:
        return "A pipe above 7 was asked for: a board has pipes 1 to 7; or the board's own status.";
    case usbErrorTransfer:
        return "The exchange with the board failed, or it answered without the data that it was asked for: check its "
               "cable and power. It was not repeated and may have taken effect: read the board's state before trying "
               "again, and open the board anew if it was unplugged; or the board's own status.";
    case usbErrorLength:
        return "A length is out of range: a timeout message takes up to 60 bytes, an R20 request up to 511, a "
               "bounded receive needs room for a whole answer; or an R20 answered with a wrong length; or the board's "
               "own status.";
    case usbErrorParameter:
        return "A number is outside its range: compare the arguments with the ranges of the operation, and for "
               "the EEPROM make sure that its type was configured; or the board's own status.";
    case usbErrorBaudRate:
        return "The serial port has no such baud rate: use one of the port's own list; or the board's own status.";
    case usbErrorPortType:
        return "The serial port, its type or its format does not exist: use port 0 or 1 and type 0 to 3, and "
               "format 5 with type 0 only; or the board's own status.";
    case usbErrorRampReel:
        return "A ramp table was given for a reel that does not exist: use reel 0, 1 or 2; or the board's own status.";
    case usbErrorNotSupported:
        return "The board lacks this function, the SRAM address is beyond an R20's memory, or (SAS) no board is "
               "open: ask GetFittedBoard for the model; or the board's own status.";
    case usbErrorNotSupportedR20s:
        return "An R20s lacks this function: only an R35 has it; or the board's own status.";
    case usbErrorNullPointer:
        return "A null pointer was passed where the operation needs a buffer or a place for its result; or the board's "
               "own status.";
    default:
        return "The board or its driver refused the request with a status of its own: look it up in the "
               "documentation of the board's firmware.";
    }
}
