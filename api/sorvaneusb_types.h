// The records, enumerations and constants of the board interface.
//
// Every enumeration that names a number of the board (an input, an output, a port) has the underlying type unsigned
// int, so that a range test against its upper end also refuses negative numbers. A value whose meaning is known only
// to the board's firmware has no enumerator: pass it as a number of the enumeration's type, for example
// ActiveState(1).
#ifndef SORVANEUSB_TYPES_H
#define SORVANEUSB_TYPES_H

/// Why the last operation failed; see SorvaneUSB::GetLastError. A board's or driver's own status passes through
/// unchanged, so a program may meet values outside this list, and one of the list with the board's meaning.
enum _usbErrorCode : int {
    usbErrorNone = 0,           ///< no error
    usbErrorDataLength = 2,     ///< the length of the data to send is out of range (SPI, SEC)
    usbErrorPipeNumber = 3,     ///< a pipe number above 7 was asked for (R20s, R35)
    usbErrorTransfer = 6,       ///< the exchange with the board failed, or a read was answered without data
    usbErrorLength = 7,         ///< a length is out of range: an R20 answer or payload, a timeout message, a capacity
    usbErrorParameter = 8,      ///< a numeric argument is outside its range
    usbErrorBaudRate = 10,      ///< the baud rate is not in the port's table
    usbErrorPortType = 11,      ///< wrong serial port, port type or format for the type (SetConfig)
    usbErrorRampReel = 16,      ///< the reel of a ramp table is above 2
    usbErrorNotSupported = 25,  ///< the board lacks the function, an R20 SRAM address is out of range, or (SAS) no
                                ///< board is open
    usbErrorNotSupportedR20s = 26,  ///< an R20s lacks the function
    usbErrorNullPointer = 30        ///< a pointer that the operation needs is null
};

/// The most bytes that a board hands over in one answer: the size of a buffer for one. Operations that receive several
/// answers (Receive, Receive9BitData, ReceivePolledMessage) need more; see their forms with a capacity.
const unsigned long usbLargestAnswer = 256;
/// The same for an R20, whose answers travel in one 64-byte packet.
const unsigned long usbLargestAnswerR20 = 62;

/// Inputs 0 to 32. Input n is bit n % 8 of byte n / 8 of the input bytes. Beginning and ending a pulsed-input check,
/// resetting, decrementing and reading a counter, reading the state of a pulsed input or of a hopper, and the recorder
/// take 0 to 23 only.
enum _usbInputBitId : unsigned int {
    usbInput0,
    usbInput1,
    usbInput2,
    usbInput3,
    usbInput4,
    usbInput5,
    usbInput6,
    usbInput7,
    usbInput8,
    usbInput9,
    usbInput10,
    usbInput11,
    usbInput12,
    usbInput13,
    usbInput14,
    usbInput15,
    usbInput16,
    usbInput17,
    usbInput18,
    usbInput19,
    usbInput20,
    usbInput21,
    usbInput22,
    usbInput23,
    usbInput24,
    usbInput25,
    usbInput26,
    usbInput27,
    usbInput28,
    usbInput29,
    usbInput30,
    usbInput31,
    usbInput32,
    usbInputUnused = 255  ///< an empty entry in the list of recorded inputs
};

/// Outputs 0 to 37. Output n is bit n % 8 of byte n / 8 of a usbOutput. Only 0 to 31 can be pulsed.
enum _usbOutputBitId : unsigned int {
    usbOutput0,
    usbOutput1,
    usbOutput2,
    usbOutput3,
    usbOutput4,
    usbOutput5,
    usbOutput6,
    usbOutput7,
    usbOutput8,
    usbOutput9,
    usbOutput10,
    usbOutput11,
    usbOutput12,
    usbOutput13,
    usbOutput14,
    usbOutput15,
    usbOutput16,
    usbOutput17,
    usbOutput18,
    usbOutput19,
    usbOutput20,
    usbOutput21,
    usbOutput22,
    usbOutput23,
    usbOutput24,
    usbOutput25,
    usbOutput26,
    usbOutput27,
    usbOutput28,
    usbOutput29,
    usbOutput30,
    usbOutput31,
    usbOutput32,
    usbOutput33,
    usbOutput34,
    usbOutput35,
    usbOutput36,
    usbOutput37
};

/// One byte of an output pattern: byte 0 holds outputs 0 to 7, ... byte 4 outputs 32 to 37.
enum _usbOutputId : unsigned int { usbOutputByte0, usbOutputByte1, usbOutputByte2, usbOutputByte3, usbOutputByte4 };

/// The board's two serial ports.
enum _usbSerialPort : unsigned int { usbSerialPort0, usbSerialPort1 };

/// What a serial port is used for; the meaning of each type is the firmware's.
enum _usbPortType : int { usbPortType0, usbPortType1, usbPortType2, usbPortType3 };

/// Whether the board delivers its four groups of multiplexed inputs.
enum usbInputMultiplexing : unsigned int { usbInputMultiplexingOff, usbInputMultiplexingOn };

/// The level at which an input counts as active: 0 to 255, whose meaning is the firmware's; travels as its low byte.
enum ActiveState : unsigned int {};

/// State of a hopper, 0 to 255. The values without a name are the firmware's.
enum ReleaseHopperCoinsStatus : unsigned int {
    usbHopperActive = 4  ///< the hopper is paying out
};

/// State of the input recorder, 0 to 255; the values are the firmware's.
enum RecordingStatus : unsigned int {};

/// The board's inputs, 5 bytes: input n is bit n % 8 of bits[n / 8]. Inputs 24 to 26 carry the board number. The bits
/// of bits[4] above bit 0 name no input and come as the board sends them.
struct usbInput {
    unsigned char bits[5];
};

/// A set of outputs, 5 bytes: output n is bit n % 8 of bits[n / 8]. Bits 6 and 7 of bits[4] name no output; they are
/// sent as given.
struct usbOutput {
    unsigned char bits[5];
};

/// The multiplexed inputs as the board delivers them, 13 bytes. The meanings are the firmware's.
struct usbMultiplexedInput {
    unsigned char leadByte;
    unsigned char groups[4][3];  ///< four groups of three bytes
};

/// An acceleration or deceleration table of a reel, 61 bytes. The meaning of an entry is the firmware's.
struct usbRampTable {
    unsigned char entryCount;   ///< entries that are sent: 0 to 60
    unsigned char entries[60];  ///< 0 to 255 each; those from entryCount on are not read
};

/// Status of the three reels, 18 bytes; element r of each array belongs to reel r. The meanings are the firmware's.
struct ReelStatusEx {
    unsigned short first[3];   ///< 0 to 65535
    unsigned short second[3];  ///< 0 to 65535
    unsigned char third[3];    ///< 0 to 255
    unsigned char fourth[3];   ///< 0 to 255
};

/// As ReelStatusEx in 12 bytes, with the low 8 bits of first and second: a value above 255 shows only its remainder.
struct usbReelStatus {
    unsigned char first[3];
    unsigned char second[3];
    unsigned char third[3];
    unsigned char fourth[3];
};

/// Line settings of a serial port, 8 bytes. The meanings of Options and Format are the firmware's.
struct _DCB {
    unsigned int BaudRate;  ///< bit/s; port 0: 1200, 2400, 4800, 9600, 19200, 38400, 62500;
                            ///< port 1: these and 110, 300, 600, 14400, 57600
    unsigned char Options;  ///< bit 1, and bits 2 and 3 as a number 0 to 3, go to the board; the rest is ignored
    unsigned char Format;   ///< 1, 2 or 5 (5 only with port type 0); every other value selects the board's format 0
};

/// A poll slot for a ccTalk peripheral, 72 bytes. Each message is a whole ccTalk frame: destination, number of data
/// bytes, source, header, data, checksum; nothing is computed for the caller. message[1] + 5 bytes of it are sent, at
/// most 25, so 0 to 20 data bytes. The sum is taken modulo 256: a number of 251 to 255 is no error, it sends 0 to 4
/// bytes. The meaning of the options and of the time is the firmware's.
struct CCTalkConfig {
    unsigned char slot;     ///< 0 to 3
    unsigned int optionA;   ///< 0 to 3
    unsigned char optionB;  ///< 0 to 4
    unsigned char optionC;  ///< 0 to 255
    int timeMs;  ///< milliseconds, 0 to 2550, sent in units of 10 ms, rounded down; above 2550 it is replaced
                 ///< by 2550 in this record, below 0 the low byte of timeMs / 10 is sent
    unsigned char optionD;       ///< 0 to 255
    unsigned char optionE;       ///< 0 to 255
    unsigned char optionF;       ///< 0 to 255
    unsigned char message1[25];  ///< first frame
    unsigned char message2[25];  ///< second frame
};

/// A poll slot for a peripheral whose frames carry a length byte, 76 bytes. Each message is lengthExtra +
/// message[lengthIndex] bytes long, at most 25; the sum is taken modulo 256, so one above 255 is no error if its
/// remainder is 25 or less. The meaning of the options, of the framing and of the time is the firmware's.
struct RS232PollConfig {
    unsigned char slot;          ///< 0 to 3
    unsigned int optionA;        ///< 0 to 3
    unsigned char optionB;       ///< 0 to 4
    unsigned char optionC;       ///< 0 to 255
    int timeMs;                  ///< as in CCTalkConfig
    unsigned char framing;       ///< 0 to 255
    unsigned char lengthIndex;   ///< index of the length byte within each message, 0 to 24
    unsigned char lengthExtra;   ///< bytes of a frame besides the counted ones
    unsigned char spare;         ///< not read
    unsigned char optionD;       ///< 0 to 255
    unsigned char optionE;       ///< 0 to 255
    unsigned char optionF;       ///< 0 to 255
    unsigned char message1[25];  ///< first message
    unsigned char message2[25];  ///< second message
};

/// Description of a serial EEPROM type, 6 bytes.
struct R20EEPROM {
    unsigned char pageSize;      ///< bytes of a write page
    unsigned char addressBytes;  ///< address bytes after the bus address: 1 or 2
    unsigned short maxAddress;   ///< highest byte address, capacity - 1; the bound of ReadEEPROM and WriteEEPROM
    unsigned char busAddress;    ///< 7-bit bus address
    unsigned char spare;         ///< 0; copied along
};

/// The EEPROM types that a board can carry, 128 bytes (E24LC01) to 64 KiB (E24LC512).
const R20EEPROM E24LC01 = {8, 1, 127, 0x50, 0};
const R20EEPROM E24LC02 = {8, 1, 255, 0x50, 0};
const R20EEPROM E24LC04 = {16, 1, 511, 0x50, 0};
const R20EEPROM E24LC08 = {16, 1, 1023, 0x50, 0};
const R20EEPROM E24LC16 = {16, 1, 2047, 0x50, 0};
const R20EEPROM E24LC32 = {32, 2, 4095, 0x51, 0};
const R20EEPROM E24LC64 = {32, 2, 8191, 0x51, 0};
const R20EEPROM E24LC128 = {64, 2, 16383, 0x51, 0};
const R20EEPROM E24LC256 = {64, 2, 32767, 0x51, 0};
const R20EEPROM E24LC512 = {128, 2, 65535, 0x51, 0};

#endif
