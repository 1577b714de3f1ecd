/// \file sorvaneusb.h
/// The board interface: one SorvaneUSB object drives one USB input/output board of a coin-operated machine.
///
/// \code
/// SorvaneUSB board;
/// if (!board.init(0)) {  // the first board that opens
///     std::puts(usbErrorText(board.GetLastError()));
///     return 1;
/// }
/// board.SetOutputBit(usbOutput12, 1);
/// unsigned int pressed = 0;
/// if (board.GetInputBit(usbInput3, &pressed) && pressed)
///     board.SetOutputBit(usbOutput12, 0);
/// board.close();  // output 12 stays as it is
/// \endcode
///
/// ### Opening
/// Boards are the nodes /dev/Vexa_0 to /dev/Vexa_15, opened for reading and writing. There are three models: R20, R20s
/// and R35; what differs is said at each operation under "Models". `InitPort` opens by device number, `init` the first
/// board that opens, `InitUSBBoard` by the board number that a board shows on its inputs 24 to 26. Opening makes the
/// board's firmware run (loading it takes 57 to 279 exchanges) and, the first time a device number is opened on the
/// machine, finds out which EEPROM is fitted and tells the board. Programs that open one board at the same time, as
/// when a cabinet boots, do it one after the other: an exclusive advisory lock (`flock`) on the node is held meanwhile,
/// and who comes second waits and finds the board ready. An opening that fails may leave the object open: `close` it,
/// or open again.
///
/// ### Results and errors
/// Operations return 1 for success and 0 for failure; no exception leaves the library. The reason of a failure is a
/// code, one for the whole process and all boards, read with `GetLastError` (`usbErrorText` makes it a sentence).
/// Arguments are checked before anything is sent, in the order in which "Errors" lists the checks.
/// - No board open: 0 whatever the arguments, and the stored code stays as it was. Only the four SAS operations store
///   25 then. Operations that need no board say so.
/// - No memory left: the operation fails, without a code of its own.
/// - A success stores 0 on an R20s or R35, whenever something was sent. On an R20 a code stays until the next failure
///   or `ClearErrors`: look at the result first, at the code only after a 0.
///
/// ### The exchange's own errors
/// An exchange is one request to the board with its answer, one call of the driver, about a millisecond. The library
/// neither waits nor retries, and an exchange that fails is never repeated, a signal's interruption included: it may
/// already have paid a coin. Where "Errors" ends with "the exchange's own", these may follow:
/// - 6: the driver call failed (board unplugged, call interrupted), or an R20 answered another request. Whether the
///   board has acted is unknown.
/// - 7: an R20 answered with fewer than 2 or more than 64 bytes (a code and a status byte come before its data).
/// - 3: a pipe above 7 on an R20s or R35. Only `PerformUSBIO` can meet it.
/// - Any other: the status that the board (R20: a byte, -128 to 127) or the driver (R20s, R35: 32 bits) reported. It is
///   passed on unchanged, so it can also equal a code of this list; its meaning is the firmware's.
///
/// ### How to read an operation
/// "Sent" gives request code, pipe and payload, byte by byte; a value of several bytes travels in the order stated.
/// Enumerations travel as their low byte. "Unchecked" means that every value is sent as it is; "the firmware's" means
/// that the library does not know what a value does. Bytes missing from a short answer count as 0 unless stated. An
/// answer carries at most `usbLargestAnswer` bytes (256), on an R20 `usbLargestAnswerR20` (62).
///
/// Where an operation hands over whatever the board answers, the form without a `capacity` **writes all that comes**,
/// past the end of a small buffer too. Use the form with a `capacity`, which never writes more into it, or give
/// `usbLargestAnswer` bytes where one answer is received. For `Receive`, `Receive9BitData` and `ReceivePolledMessage`
/// without a `capacity` no size is ever safe. The R20s and R35 driver is told no buffer sizes: that one answer ends
/// after `usbLargestAnswer` bytes is its promise, and nothing in the library can hold it to that.
///
/// ### Copies
/// Copies and assignments share one open board, so objects may live in standard containers. The `close` or destruction
/// of the last one closes the node. Nothing is sent to the board on the way.
///
/// ### Threads and signal handlers
/// Nothing is locked inside a process. Callers serialise the uses of one board and of its copies (opening, copying,
/// assigning and closing included), and of what the process has once for all boards: the error store, which every
/// failure writes, on an R20s or R35 every success too, and the counter of `Receive`. One lock of your own around every
/// operation and the `GetLastError` behind it does. Call nothing from a signal handler: one that interrupts a locked
/// operation would wait for itself for ever. So would a program that the handler execs: exec keeps a held lock, which
/// the system gives back only when the process ends. Boards may be static objects: the library is ready before they are
/// made.
///
/// ### Processes
/// Several processes, 32- and 64-bit, may drive the same boards. Three things are shared by all of them, per device
/// number, and locked, for all boards together, during the whole operation, its exchanges included:
/// - the two flash patterns (a lock each): `ModifyOutputs`, `SetOutputBit`, `SetOutputs`, `SetOnPeriodOutputs`,
///   `SetOffPeriodOutputs`, `SetOnPeriodOutputBit`, `SetOffPeriodOutputBit`;
/// - the EEPROM's description and its mark "configured": `ConfigureEEPROM`, `ReadEEPROM`, `WriteEEPROM`, each step of
///   `CheckEEPROM` and of an opening;
/// - the batch of timestamped bytes: `ReceiveByteWithTimestamp`, `ReceiveByteWithTimestamp9BitData`.
///
/// Making a board ready, by an opening or by `Download8051Software`, also holds a lock of that board alone. Everything
/// else is unlocked: transfers of several exchanges (SRAM, serial data) interleave with those of other processes, and
/// two readers of one serial port or switch log take each other's data. The shared state is SysV shared memory and
/// semaphores under the key files /tmp/R20SharedMemory and /tmp/Sem_R20Mutex. A process that is killed, or ends by
/// `_exit`, `quick_exit`, `abort` or `exec`, leaves its registration, and so the semaphores stay in the system, where
/// the next process uses them; if nobody else was attached, the memory stays as well, with its patterns, marks and
/// batches. Who deletes these files or removes the objects splits the processes into strangers. Where the memory cannot
/// be had, or is damaged, one process still drives its boards fully, on tables of its own and without locks.
///
/// A child made by fork that did not load the library itself may drive the boards while its parent lives; to outlive
/// it, it must exec. Open nodes are closed by exec.
///
/// ### What a program must know to be safe
/// - Nothing is sent when a board is closed or a program ends or is killed: outputs, flashing, pulses and reels stay as
///   they are, and **a hopper goes on paying**. Switch off and stop before closing, and first thing after a start.
/// - After a failed request that moves coins or reels, read status and counters before asking again.
/// - A board that was replugged or power-cycled has lost its settings. `close` it and its copies and open it again:
///   that loads its firmware, but does **not** configure its EEPROM while any process (this one too) keeps the shared
///   memory, or one that was killed left it behind. Call `CheckEEPROM`, then `ConfigureEEPROM`. Configure inputs, reels
///   and ports again as well, and switch the outputs: the kept flash patterns still hold what was asked before.
/// - An opening killed between the EEPROM's detection and its configuration leaves a wrong upper bound marked as
///   configured, so that no later opening mends it; the same two calls do.
/// - A process stopped (SIGSTOP, a debugger) inside a locked operation, or a board that hangs in its driver during one,
///   holds up the same operations of all others, for all boards. One that is stopped while it loads or unloads the
///   library may hold up every program that starts or ends. A killed process gives its locks back.
/// - One that is stopped, or hangs, while it makes a board ready holds up all others that open the same board, without
///   a limit; `init` and `InitUSBBoard`, which search from device 0, wait there too. A child forked meanwhile (by
///   another thread) holds this lock, too: if its parent is killed, until it ends or execs. Never `flock` a node
///   yourself. Programs linked statically with a library from before this lock do not wait. Where the system has no
///   such lock, an opening goes on without.
#ifndef SORVANEUSB_H
#define SORVANEUSB_H

#include "sorvaneusb_types.h"

/// The version of this header as one number, major * 10000 + minor * 100 + patch, and as text.
#define SORVANEUSB_VERSION 130000
#define SORVANEUSB_VERSION_TEXT "13.0.0"

#define SORVANE_API __attribute__((visibility("default")))

class RBaseImplementation;

/// One board, or none: an object starts without. See the overview above for what holds for every operation.
class SORVANE_API SorvaneUSB
{
public:
    /// Makes an object without a board.
    /// - Sent: nothing.
    SorvaneUSB();
    /// Closes the board as `close` does.
    /// - Sent: nothing.
    ~SorvaneUSB();

    /// \name Errors
    /// One code for the whole process; no board is needed.
    /// \{

    /// Returns the code of the last failure of any board in this process; reading does not clear it.
    /// - Sent: nothing.
    /// - Result: a value of `_usbErrorCode`, or a status of a board or driver that the enumeration does not name. 0
    ///   after the library is loaded.
    _usbErrorCode GetLastError();

    /// Stores code 0 and returns 1.
    /// - Sent: nothing.
    int ClearErrors();

    /// \}
    /// \name Opening by search
    /// `InitPort`, which opens a given device number, stands near the end of the class.
    /// \{

    /// Opens the lowest device number from 0 to 15 that opens: `ClearErrors`, then `InitPort`, for one after the other.
    /// - Sent: as `InitPort`, for each board that is there.
    /// - Arguments: `unused` is not looked at.
    /// - Result: that of the last `InitPort`: 1 with a board open and ready, 0 if none is.
    /// - Errors: those of `InitPort` for device 15 alone, since the code is cleared before each attempt: after a result
    ///   of 0 with code 0 there may be a board, and it may be open. To learn why a certain board does not open, use
    ///   `InitPort`; the exchange's own.
    /// - On failure: the last board whose preparation failed is still open: `close` it. A board that was open before
    ///   stays open if no other was found.
    int init(int unused);

    /// Opens the board that shows a board number on its inputs 24 to 26: opens devices 0 to 7 in turn, reads the inputs
    /// and closes those that differ. Boards on the way are made ready too, their firmware loaded.
    /// - Sent: as `InitPort`, then request 75 on pipe 1, no payload, for each board that opens.
    /// - Arguments: `boardNumber` 0 to 7; 8 to 15 are accepted, but three inputs never show them.
    /// - Result: 1 with the matching board open; 0 if none matches, without a code of its own.
    /// - Errors: 8 `boardNumber` above 15; those of the attempts, `InitPort` and `GetInputs`; the exchange's own.
    /// - On failure: after 8 nothing has changed. Otherwise a board that failed on the way may still be open: `close`
    ///   it. A board that was open before stays open if no other was found.
    int InitUSBBoard(unsigned char boardNumber);

    /// \}
    /// \name Identity and firmware
    /// What version and serial bytes mean is the firmware's. Forms without `capacity` write whatever comes.
    /// \{

    /// Tells the model of the open board.
    /// - Sent: nothing.
    /// - Result: `type` (1 byte): 1 R20, 2 R20s, 3 R35.
    /// - Errors: 30 `type` null.
    /// - On failure: `type` is untouched.
    int GetFittedBoard(unsigned char *type);

    /// Tells the USB speed of the open board.
    /// - Sent: nothing.
    /// - Result: `speed` (1 byte): 1 full speed (12 Mbit/s), 2 high speed (480 Mbit/s). Without a board the byte is
    ///   left as it was, and the result is 1 all the same.
    /// - Errors: 30 `speed` null, with or without a board.
    /// - On failure: nothing is written.
    int GetBoardSpeed(unsigned char *speed);

    /// Reads the version of the board's 8051 firmware.
    /// - Sent: request 6 on pipe 2, no payload.
    /// - Result: `version` receives the whole answer, however long; its length is not told. Give `usbLargestAnswer`
    ///   bytes or use the form with a capacity.
    /// - Errors: 30 `version` null; the exchange's own.
    /// - On failure: with 30 nothing is written; after a failed exchange `version` holds nothing to rely on.
    int Get8051Version(unsigned char *version);

    /// The same into a buffer of known size.
    /// - Sent: request 6 on pipe 2, no payload.
    /// - Arguments: `capacity` in bytes, unchecked.
    /// - Result: `version` receives as many bytes as came and fit; the rest of the answer is dropped.
    /// - Errors: 30 `version` null; the exchange's own.
    /// - On failure: `version` is untouched.
    int Get8051Version(unsigned char *version, unsigned long capacity);

    /// Reads the version of the board's PIC.
    /// - Sent: request 44 on pipe 5, no payload.
    /// - Result: `version` receives the whole answer, however long; its length is not told. Give `usbLargestAnswer`
    ///   bytes or use the form with a capacity.
    /// - Errors: 30 `version` null; the exchange's own.
    /// - On failure: with 30 nothing is written; after a failed exchange `version` holds nothing to rely on.
    int GetPICVersion(unsigned char *version);

    /// The same into a buffer of known size.
    /// - Sent: request 44 on pipe 5, no payload.
    /// - Arguments: `capacity` in bytes, unchecked.
    /// - Result: `version` receives as many bytes as came and fit; the rest of the answer is dropped.
    /// - Errors: 30 `version` null; the exchange's own.
    /// - On failure: `version` is untouched.
    int GetPICVersion(unsigned char *version, unsigned long capacity);

    /// Reads the 8-byte number of the board's 1-Wire identity chip and checks its CRC.
    /// - Sent: request 120 on pipe 5, no payload.
    /// - Result: `serialNumber` receives the whole answer, however long, in the order in which the board sends it: by
    ///   the 1-Wire protocol the family code first, the CRC last. Give at least 8 bytes, better `usbLargestAnswer`, or
    ///   use the form with a capacity. `crcValid` (1 byte): 1 if byte 7 is the 1-Wire CRC of bytes 0 to 6, else 0; a
    ///   wrong CRC is no failure, eight zeros are valid, and after an answer below 8 bytes it says nothing.
    /// - Errors: 25 an R20, whatever the arguments; 30 `serialNumber` or `crcValid` null; the exchange's own.
    /// - On failure: `crcValid` is untouched; after a failed exchange `serialNumber` holds nothing to rely on.
    /// - Models: not on an R20.
    int GetDallasSerialNumber(unsigned char *serialNumber, unsigned char *crcValid);

    /// The same into a buffer of known size.
    /// - Sent: request 120 on pipe 5, no payload.
    /// - Arguments: `capacity` in bytes, unchecked; 8 hold the whole number.
    /// - Result: `serialNumber` receives at most 8 bytes and at most `capacity`. `crcValid` (1 byte) speaks of all 8,
    ///   stored or not; after an answer below 8 bytes it says nothing.
    /// - Errors: 25 an R20, whatever the arguments; 30 `serialNumber` or `crcValid` null; the exchange's own.
    /// - On failure: `serialNumber` and `crcValid` are untouched.
    /// - Models: not on an R20.
    int GetDallasSerialNumber(unsigned char *serialNumber, unsigned char *crcValid, unsigned long capacity);

    /// Reads the serial number that the board's PIC holds; `SetPICSerialNumber` writes 8 bytes.
    /// - Sent: request 63 on pipe 5, no payload.
    /// - Result: `serialNumber` receives the whole answer, however long; its length is not told. Give
    ///   `usbLargestAnswer` bytes or use the form with a capacity.
    /// - Errors: 30 `serialNumber` null; the exchange's own.
    /// - On failure: with 30 nothing is written; after a failed exchange `serialNumber` holds nothing to rely on.
    int GetPICSerialNumber(unsigned char *serialNumber);

    /// The same into a buffer of known size.
    /// - Sent: request 63 on pipe 5, no payload.
    /// - Arguments: `capacity` in bytes, unchecked.
    /// - Result: `serialNumber` receives as many bytes as came and fit; the rest of the answer is dropped.
    /// - Errors: 30 `serialNumber` null; the exchange's own.
    /// - On failure: `serialNumber` is untouched.
    int GetPICSerialNumber(unsigned char *serialNumber, unsigned long capacity);

    /// Writes the serial number that the board's PIC holds.
    /// - Sent: request 65 on pipe 5, 8 bytes: the number, in order.
    /// - Arguments: `serialNumber` points to exactly 8 bytes, unchecked.
    /// - Errors: 30 `serialNumber` null; the exchange's own.
    /// - On failure: `serialNumber` is only read. Whether the board holds the new number is unknown.
    int SetPICSerialNumber(unsigned char *serialNumber);

    /// Makes the board's 8051 firmware run: asks whether it does and, if not, loads the model's image and starts it.
    /// `InitPort` does it; a program rarely needs to. Waits while another opening makes the same board ready.
    /// - Sent: request 74 on pipe 6, no payload. If the answer's first byte is 1, the firmware runs and nothing more is
    ///   sent. Otherwise, and after an empty answer:
    ///   - request 72 on pipe 6, no payload;
    ///   - the image as `WriteSRAM` at address 0. R20: 15888 bytes by request 71 on pipe 6, 279 exchanges at full
    ///     speed, 64 at high speed. R20s: 14002 bytes by request 117 on pipe 6, pages from 13, 255 or 57 exchanges.
    ///     R35: the same with 14172 bytes, 258 or 58 exchanges. **From page 1, over the board's data,** where a
    ///     firmware once ran for this object or a copy of it: after a board's restart `close` and open it instead;
    ///   - request 73 on pipe 6, no payload.
    /// - Errors: the exchange's own.
    /// - On failure: what has been written stays in the board and does not run; calling again starts over.
    int Download8051Software();

    /// \}
    /// \name Inputs and steady outputs
    /// Input or output n is bit n % 8 of byte n / 8, bit 0 the least significant: inputs 0 to 32, outputs 0 to 37.
    ///
    /// Every steady switching goes through `ModifyOutputs`. It also enters the change into the two flash patterns (next
    /// section), which all processes share, before it is sent, and a failed exchange does not take it out again: the
    /// patterns hold what was asked of the board, and a later flash operation sends it along.
    /// \{

    /// Reads one input.
    /// - Sent: request 75 on pipe 1, no payload.
    /// - Arguments: `input` 0 to 32.
    /// - Result: `state`: 1 if the input's bit is set, else 0.
    /// - Errors: 30 `state` null; 8 `input` above 32; the exchange's own.
    /// - On failure: `state` is untouched.
    int GetInputBit(_usbInputBitId input, unsigned int *state);

    /// Reads all inputs as bytes.
    /// - Sent: request 75 on pipe 1, no payload.
    /// - Result: `buffer` receives exactly 5 bytes.
    /// - Errors: 30 `buffer` null; the exchange's own.
    /// - On failure: `buffer` is untouched.
    int GetInputs(unsigned char *buffer);

    /// Switches one output steadily on or off.
    /// - Sent: request 77 on pipe 1, 10 bytes, as `ModifyOutputs` with the one bit in the on set or in the off set.
    /// - Arguments: `output` 0 to 37; `state` 1 on, 0 off.
    /// - Errors: 8 `output` above 37 or `state` above 1; the exchange's own.
    /// - On failure: with 8 nothing changes; after a failed exchange the flash patterns hold the change.
    int SetOutputBit(_usbOutputBitId output, unsigned int state);

    /// Switches all outputs: each bit set steadily on, each bit clear off.
    /// - Sent: request 77 on pipe 1, 10 bytes: the 5 given bytes, then the complement of each.
    /// - Arguments: `outputs` points to exactly 5 bytes. Bits 6 and 7 of the last name no output and are sent as given.
    /// - Errors: 30 `outputs` null; the exchange's own.
    /// - On failure: with 30 nothing changes; after a failed exchange the flash patterns hold the change.
    int SetOutputs(unsigned char *outputs);

    /// Reads all inputs into a record.
    /// - Sent: request 75 on pipe 1, no payload.
    /// - Result: `inputs`: all 5 bytes. Inputs 24 to 26 show the board number.
    /// - Errors: 30 `inputs` null; the exchange's own.
    /// - On failure: `inputs` is untouched.
    int GetInputs(usbInput *inputs);

    /// Selects or deselects the multiplexed inputs.
    /// - Sent: request 114 on pipe 1, 1 byte: `mode`.
    /// - Arguments: `mode` 1 selects, 0 deselects.
    /// - Errors: 8 `mode` above 1; the exchange's own.
    int InputMultiplexing(usbInputMultiplexing mode);

    /// Reads the multiplexed inputs. The meaning of lead byte and groups is the firmware's.
    /// - Sent: request 115 on pipe 1, no payload.
    /// - Result: `inputs`: all 13 bytes in the order of the answer, the lead byte, then four groups of three.
    /// - Errors: 30 `inputs` null; the exchange's own.
    /// - On failure: `inputs` is untouched.
    int GetMultiplexedInputs(usbMultiplexedInput *inputs);

    /// Reads the board's set of changed inputs. What counts as changed, and since when, is the firmware's.
    /// - Sent: request 81 on pipe 1, no payload.
    /// - Result: `inputs`: all 5 bytes.
    /// - Errors: 30 `inputs` null; the exchange's own.
    /// - On failure: `inputs` is untouched.
    int GetChangedInputs(usbInput *inputs);

    /// Reads the board's raw inputs. What separates them from those of `GetInputs` is the firmware's.
    /// - Sent: request 82 on pipe 1, no payload.
    /// - Result: `inputs`: all 5 bytes.
    /// - Errors: 30 `inputs` null; the exchange's own.
    /// - On failure: `inputs` is untouched.
    int GetRawInputs(usbInput *inputs);

    /// Switches a set of outputs steadily off and another on; outputs in neither keep their state. Locked across
    /// processes.
    /// - Sent: request 77 on pipe 1, 10 bytes: 0 to 4 the on set, 5 to 9 the off set.
    /// - Arguments: `outputsOff` and `outputsOn`, 5 bytes each, unchecked. An output in both sets is sent in both: what
    ///   the board does is the firmware's; the flash patterns end with it off.
    /// - Errors: 30 `outputsOff` or `outputsOn` null; the exchange's own.
    /// - On failure: with 30 nothing changes; after a failed exchange the flash patterns hold the change.
    int ModifyOutputs(usbOutput *outputsOff, usbOutput *outputsOn);

    /// \}
    /// \name Flashing and brightness
    /// The board holds two output patterns and shows one during the on period of its flash cycle, the other during the
    /// off period. An output in both is steadily on, in neither steadily off, in one only it flashes. The length of the
    /// periods is the firmware's.
    ///
    /// The library keeps both patterns per device number, shared by all processes, so that one bit can be changed in
    /// them. They start all zero with the shared memory, not with what the board shows, and are changed before the
    /// request is sent; a failed exchange does not take a change out again. Locked across processes.
    /// \{

    /// Sets the whole on-period pattern.
    /// - Sent: request 83 on pipe 1, 5 bytes: the pattern.
    /// - Arguments: `outputs`, 5 bytes, unchecked.
    /// - Errors: the exchange's own.
    /// - On failure: the kept pattern holds the new one.
    int SetOnPeriodOutputs(usbOutput outputs);

    /// Sets the whole off-period pattern.
    /// - Sent: request 84 on pipe 1, 5 bytes: the pattern.
    /// - Arguments: `outputs`, 5 bytes, unchecked.
    /// - Errors: the exchange's own.
    /// - On failure: the kept pattern holds the new one.
    int SetOffPeriodOutputs(usbOutput outputs);

    /// Changes one output in the on-period pattern.
    /// - Sent: request 83 on pipe 1, 5 bytes: the whole kept pattern with the change.
    /// - Arguments: `outputByte` 0 to 4; `bit` 0 to 7, in byte 4 0 to 5; `state` 1 sets, 0 clears.
    /// - Errors: 8 `outputByte` above 4; 8 `bit` out of range; 8 `state` above 1; the exchange's own.
    /// - On failure: with 8 nothing changes; after a failed exchange the kept pattern holds the change.
    int SetOnPeriodOutputBit(_usbOutputId outputByte, int bit, unsigned int state);

    /// Changes one output in the off-period pattern.
    /// - Sent: request 84 on pipe 1, 5 bytes: the whole kept pattern with the change.
    /// - Arguments: `outputByte` 0 to 4; `bit` 0 to 7, in byte 4 0 to 5; `state` 1 sets, 0 clears.
    /// - Errors: 8 `outputByte` above 4; 8 `bit` out of range; 8 `state` above 1; the exchange's own.
    /// - On failure: with 8 nothing changes; after a failed exchange the kept pattern holds the change.
    int SetOffPeriodOutputBit(_usbOutputId outputByte, int bit, unsigned int state);

    /// Sets the common brightness of the outputs.
    /// - Sent: request 85 on pipe 1, 1 byte: `level`.
    /// - Arguments: `level` 0 to 10.
    /// - Errors: 8 `level` above 10; the exchange's own.
    int SetOutputBrightness(unsigned char level);

    /// \}
    /// \name Pulsed outputs
    /// The board times the pulse by itself, also when the program has ended. The flash patterns are not touched.
    /// \{

    /// Asks for a pulse that switches an output on.
    /// - Sent: request 78 on pipe 1, 2 bytes: `pulseValue`, `output`.
    /// - Arguments: `output` 0 to 31; `pulseValue` 0 to 255, its unit is the firmware's.
    /// - Errors: 8 `output` above 31; the exchange's own.
    int PulseOutput(unsigned char output, unsigned char pulseValue);

    /// Asks for a pulse that switches an output off.
    /// - Sent: request 79 on pipe 1, 2 bytes: `pulseValue`, `output`.
    /// - Arguments: `output` 0 to 31; `pulseValue` 0 to 255, its unit is the firmware's.
    /// - Errors: 8 `output` above 31; the exchange's own.
    int PulseOffOutput(unsigned char output, unsigned char pulseValue);

    /// Reads the board's pulse report; its meaning is the firmware's.
    /// - Sent: request 80 on pipe 1, no payload.
    /// - Result: `resultA`, `resultB` and `resultC`: bytes 0, 1 and 2 of the answer, each 0 to 255.
    /// - Errors: 30 `resultA`, `resultB` or `resultC` null; the exchange's own.
    /// - On failure: all three are untouched.
    int PulseOutputResult(unsigned char *resultA, unsigned int *resultB, unsigned int *resultC);

    /// \}
    /// \name Pulsed inputs
    /// The board counts pulses on inputs, for example of a coin mechanism. The meaning of the setting bytes, of
    /// `ActiveState` and of a counter's byte is the firmware's.
    /// \{

    /// Configures an input for counting; on an R20s or R35 `ConfigurePulsedInputEx` with an `inputSettingEx` of 0.
    /// - Sent: request 107 on pipe 1, 4 bytes: `input`, `inputSetting`, `activeState`, 0. R20: the first 3.
    /// - Arguments: `input` 0 to 32; `inputSetting` 0 to 255; `activeState` unchecked.
    /// - Errors: 8 `input` above 32, not on an R20; the exchange's own.
    /// - Models: an R20 is sent any `input`, as its low byte.
    int ConfigurePulsedInput(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState);

    /// Configures an input for counting, with both setting bytes.
    /// - Sent: request 107 on pipe 1, 4 bytes: `input`, `inputSetting`, `activeState`, `inputSettingEx`.
    /// - Arguments: `input` 0 to 32; `inputSetting`, `inputSettingEx` 0 to 255; `activeState` unchecked.
    /// - Errors: 25 an R20, whatever the arguments; 8 `input` above 32; the exchange's own.
    /// - Models: not on an R20.
    int ConfigurePulsedInputEx(_usbInputBitId input, unsigned char inputSetting, unsigned char inputSettingEx,
                               ActiveState activeState);

    /// Begins the board's pulsed-input check on an input.
    /// - Sent: request 108 on pipe 1, 2 bytes: `input`, 1.
    /// - Arguments: `input` 0 to 23.
    /// - Errors: 8 `input` above 23; the exchange's own.
    int BeginPulsedInputCheck(_usbInputBitId input);

    /// Ends the board's pulsed-input check on an input.
    /// - Sent: request 108 on pipe 1, 2 bytes: `input`, 0.
    /// - Arguments: `input` 0 to 23.
    /// - Errors: 8 `input` above 23; the exchange's own.
    int EndPulsedInputCheck(_usbInputBitId input);

    /// Resets the counter of an input.
    /// - Sent: request 109 on pipe 1, 1 byte: `input`.
    /// - Arguments: `input` 0 to 23.
    /// - Errors: 8 `input` above 23; the exchange's own.
    int ResetPulsedInputCounter(_usbInputBitId input);

    /// Decrements the counter of an input.
    /// - Sent: request 110 on pipe 1, 1 byte: `input`.
    /// - Arguments: `input` 0 to 23.
    /// - Errors: 8 `input` above 23; the exchange's own.
    int DecrementPulsedInputCounter(_usbInputBitId input);

    /// Reads the counter of an input.
    /// - Sent: request 111 on pipe 1, 1 byte: `input`.
    /// - Arguments: `input` 0 to 23.
    /// - Result: `counter` (1 byte): byte 0 of the answer, 0 to 255.
    /// - Errors: 30 `counter` null; 8 `input` above 23; the exchange's own.
    /// - On failure: `counter` is untouched.
    int ReadPulsedInputCounter(_usbInputBitId input, unsigned char *counter);

    /// Tells whether a hopper is paying, by `GetParallelHopperStatus`.
    /// - Sent: request 113 on pipe 1, 1 byte: `input`.
    /// - Arguments: `input` 0 to 23.
    /// - Result: `active`: 1 if the status is 4, else 0. `hopperByte` (1 byte): byte 1 of the answer, the firmware's.
    /// - Errors: 30 `active` or `hopperByte` null; 8 `input` above 23; the exchange's own.
    /// - On failure: `active` and `hopperByte` are untouched.
    int GetPulsedInputStatus(_usbInputBitId input, unsigned int *active, unsigned char *hopperByte);

    /// \}
    /// \name Hoppers
    /// The board runs a hopper's drive output until a number of coins has passed the hopper's coin input. It does so by
    /// itself: closing the board, or the program's end, does not stop it. After a failed release, whatever its code,
    /// read `GetParallelHopperStatus` before asking again: the board may be paying.
    /// \{

    /// Asks a hopper for coins; on an R20s or R35 `ReleaseParallelHopperCoinsEx` with an `inputSettingEx` of 0.
    /// - Sent: request 112 on pipe 1, 8 bytes: `input`, `inputSetting`, `activeState`, `hopperOutput`, high and low
    ///   byte of `coinCount`, `hopperSetting`, 0. R20: the first 7.
    /// - Arguments: `input` 0 to 32, the coin input; `inputSetting` and `activeState` as in `ConfigurePulsedInput`;
    ///   `hopperOutput` 0 to 37, the drive; `coinCount` 0 to 65535 coins; `hopperSetting` 0 to 255, the firmware's.
    /// - Errors: 8 `input` above 32 or `hopperOutput` above 37, not on an R20; the exchange's own.
    /// - On failure: with 8 nothing is sent; after a failed exchange the board may be paying.
    /// - Models: an R20 is sent any `input` and `hopperOutput`, as low bytes, and has no request that stops a release:
    ///   ask it for few coins at a time.
    int ReleaseParallelHopperCoins(_usbInputBitId input, unsigned char inputSetting, ActiveState activeState,
                                   _usbOutputBitId hopperOutput, unsigned short coinCount, unsigned char hopperSetting);

    /// Asks a hopper for coins, with both setting bytes of its coin input.
    /// - Sent: request 112 on pipe 1, 8 bytes: `input`, `inputSetting`, `activeState`, `hopperOutput`, high and low
    ///   byte of `coinCount`, `hopperSetting`, `inputSettingEx`.
    /// - Arguments: `input` 0 to 32, the coin input; `inputSetting`, `inputSettingEx` and `activeState` as in
    ///   `ConfigurePulsedInputEx`; `hopperOutput` 0 to 37, the drive; `coinCount` 0 to 65535 coins; `hopperSetting` 0
    ///   to 255, the firmware's.
    /// - Errors: 25 an R20, whatever the arguments; 8 `input` above 32 or `hopperOutput` above 37; the exchange's own.
    /// - On failure: with 25 or 8 nothing is sent; after a failed exchange the board may be paying.
    /// - Models: not on an R20.
    int ReleaseParallelHopperCoinsEx(_usbInputBitId input, unsigned char inputSetting, unsigned char inputSettingEx,
                                     ActiveState activeState, _usbOutputBitId hopperOutput, unsigned short coinCount,
                                     unsigned char hopperSetting);

    /// Reads the state of a hopper.
    /// - Sent: request 113 on pipe 1, 1 byte: `input`.
    /// - Arguments: `input` 0 to 23, the coin input: the state of a hopper on input 24 to 32 cannot be read.
    /// - Result: `status`: byte 0 of the answer, 4 (`usbHopperActive`) while it pays, other values are the firmware's.
    ///   `hopperByte` (1 byte): byte 1, the firmware's.
    /// - Errors: 30 `status` or `hopperByte` null; 8 `input` above 23; the exchange's own.
    /// - On failure: `status` and `hopperByte` are untouched.
    int GetParallelHopperStatus(_usbInputBitId input, ReleaseHopperCoinsStatus *status, unsigned char *hopperByte);

    /// Stops a hopper.
    /// - Sent: request 124 on pipe 1, 1 byte: `input`.
    /// - Arguments: `input` 0 to 32, the coin input.
    /// - Errors: 25 an R20, whatever the argument; 8 `input` above 32; the exchange's own.
    /// - On failure: the hopper may still be paying.
    /// - Models: not on an R20.
    int StopHopperCoinRelease(_usbInputBitId input);

    /// \}
    /// \name Reels
    /// Up to three motor-driven reels, 0 to 2, which the board runs by itself. The meaning of settings, modes, ramp
    /// entries and status values is the firmware's.
    /// \{

    /// Configures the reel drive: `ConfigureReelsEx` with a setting of one byte.
    /// - Sent: request 86 on pipe 1, 4 bytes: `reels`, 0, `reelSetting`, `reelOption`.
    /// - Arguments: `reels` 0 to 3; `reelSetting`, `reelOption` 0 to 255.
    /// - Errors: 8 `reels` above 3; the exchange's own.
    int ConfigureReels(unsigned char reels, unsigned char reelSetting, unsigned char reelOption);

    /// Configures the reel drive.
    /// - Sent: request 86 on pipe 1, 4 bytes: `reels`, high and low byte of `reelSetting`, `reelOption`.
    /// - Arguments: `reels` 0 to 3; `reelSetting` 0 to 65535; `reelOption` 0 to 255.
    /// - Errors: 8 `reels` above 3; the exchange's own.
    int ConfigureReelsEx(unsigned char reels, unsigned short reelSetting, unsigned char reelOption);

    /// Spins a reel.
    /// - Sent: request 87 on pipe 1, 4 bytes: `reel`, `spinMode`, high and low byte of `steps`.
    /// - Arguments: `reel` unchecked; `spinMode` 0, 1, 2, 254 or 255 (-2 to 2 as a signed byte); `steps` 0 to 65535.
    /// - Errors: 8 `spinMode` is none of these; the exchange's own.
    /// - On failure: with 8 nothing is sent; after a failed exchange the reel may be spinning.
    int SpinReels(unsigned char reel, unsigned char spinMode, unsigned short steps);

    /// Loads the acceleration table of a reel.
    /// - Sent: request 88 on pipe 1, 2 to 62 bytes: `reel`, the number of entries, the entries.
    /// - Arguments: `reel` 0 to 2; `table` with 0 to 60 entries of one byte each.
    /// - Errors: 16 `reel` above 2; 8 more than 60 entries in `table`; the exchange's own.
    int SpinRampUp(unsigned char reel, usbRampTable table);

    /// Loads the deceleration table of a reel.
    /// - Sent: request 89 on pipe 1, 2 to 62 bytes: `reel`, the number of entries, the entries.
    /// - Arguments: `reel` 0 to 2; `table` with 0 to 60 entries of one byte each.
    /// - Errors: 16 `reel` above 2; 8 more than 60 entries in `table`; the exchange's own.
    int SpinRampDown(unsigned char reel, usbRampTable table);

    /// Sets the duty cycle of the reel drive.
    /// - Sent: request 90 on pipe 1, 3 bytes: `dutyA`, `dutyB`, `dutyC`.
    /// - Arguments: `dutyA`, `dutyB`, `dutyC` 0 to 255, unchecked; the meaning is the firmware's.
    /// - Errors: the exchange's own.
    int SetDutyCycle(unsigned char dutyA, unsigned char dutyB, unsigned char dutyC);

    /// Reads the status of the three reels, with the low 8 bits of the first two values.
    /// - Sent: request 92 on pipe 1, no payload.
    /// - Result: `status`: all 12 bytes, decoded as by `GetReelStatusEx`.
    /// - Errors: 30 `status` null; the exchange's own.
    /// - On failure: `status` is untouched.
    int GetReelStatus(usbReelStatus *status);

    /// Reads the status of the three reels. The answer has 6 bytes a reel: two 16-bit values, high byte first, then two
    /// bytes; the record groups by value, so element r of each array belongs to reel r.
    /// - Sent: request 92 on pipe 1, no payload.
    /// - Result: `status`: the whole record (18 bytes).
    /// - Errors: 30 `status` null; the exchange's own.
    /// - On failure: `status` is untouched.
    int GetReelStatusEx(ReelStatusEx *status);

    /// Switches the synchronisation of the reels.
    /// - Sent: request 91 on pipe 1, 1 byte: `enable`.
    /// - Arguments: `enable` 0 to 255, unchecked; the meaning is the firmware's.
    /// - Errors: the exchange's own.
    int ReelSynchroniseEnable(unsigned char enable);

    /// \}
    /// \name Input recorder and diagnostics
    /// The board records up to four of its inputs 0 to 23 into its own memory. An R20 lacks all of this section. The
    /// format of the recording, the status values and the diagnostic data are the firmware's.
    /// \{

    /// Says which inputs are recorded, and where in the board's memory.
    /// - Sent: request 125 on pipe 1, 9 bytes: 0 to 3 the entries; with B = `recordAddress` + 0x4000: 4 the page B >>
    ///   14, 5 bits 8 to 13 of B, 6 bits 0 to 7 of B; 7 and 8 high and low byte of `recordLength`.
    /// - Arguments: `recordInputs` points to exactly four entries, each 0 to 23 or, if empty, `usbInputUnused` (255),
    ///   not all of them empty; `recordAddress` 0 to 0x73FFE; `recordLength` 0 to 65535, with the address at most
    ///   0x73FFE, on an R35 too. Keep both together below 0x30000: there an address is that of `ReadLargeSRAM`. Above,
    ///   the recorder's page is sent without the 3 that SRAM transfers add, and its pages 13 to 15 are where the
    ///   firmware was loaded.
    /// - Errors: 25 an R20, whatever the arguments; 30 `recordInputs` null; 8 an entry is above 23 and not 255; 8 all
    ///   four are 255; 8 `recordAddress` above 0x73FFE; 8 address and length exceed 0x73FFE; the exchange's own.
    /// - On failure: `recordInputs` is only read.
    /// - Models: not on an R20.
    int ConfigureRecordingInputs(_usbInputBitId *recordInputs, unsigned long recordAddress,
                                 unsigned short recordLength);

    /// Starts the recorder.
    /// - Sent: request 126 on pipe 1, 2 bytes: high and low byte of `startValue`.
    /// - Arguments: `startValue` 10 to 15000; the meaning is the firmware's.
    /// - Errors: 25 an R20, whatever the argument; 8 `startValue` below 10 or above 15000; the exchange's own.
    /// - Models: not on an R20.
    int StartRecordingInputs(unsigned short startValue);

    /// Reads the state of the recorder.
    /// - Sent: request 127 on pipe 1, no payload.
    /// - Result: `status`: byte 0 of the answer; `valueA`: bytes 1 and 2, `valueB`: bytes 3 and 4, high byte first.
    /// - Errors: 25 an R20, whatever the arguments; 30 `status`, `valueA` or `valueB` null; the exchange's own.
    /// - On failure: all three are untouched.
    /// - Models: not on an R20.
    int GetRecordingStatus(RecordingStatus *status, unsigned short *valueA, unsigned short *valueB);

    /// Sends a diagnostic request and hands over the answer.
    /// - Sent: request 128 on pipe 1, `requestLength` bytes: the request as given.
    /// - Arguments: `requestData` points to `requestLength` bytes; the length is unchecked and goes to the driver.
    /// - Result: `reply` receives the whole answer, up to `usbLargestAnswer` bytes: give that many or use the form with
    ///   a capacity. `replySize`: the number of bytes stored.
    /// - Errors: 25 an R20, whatever the arguments; 30 `requestData`, `reply` or `replySize` null; the exchange's own.
    /// - On failure: `reply` and `replySize` are untouched.
    /// - Models: not on an R20.
    int ReadDiagnosticData(unsigned char *requestData, unsigned long requestLength, unsigned char *reply,
                           unsigned long *replySize);

    /// The same into a buffer of known size.
    /// - Sent: request 128 on pipe 1, `requestLength` bytes: the request as given.
    /// - Arguments: `requestData` points to `requestLength` bytes, unchecked; `capacity` in bytes, unchecked.
    /// - Result: `reply` receives as many bytes as came and fit, the rest is dropped; `replySize`: the number stored.
    /// - Errors: 25 an R20, whatever the arguments; 30 `requestData`, `reply` or `replySize` null; the exchange's own.
    /// - On failure: `reply` and `replySize` are untouched.
    /// - Models: not on an R20.
    int ReadDiagnosticData(unsigned char *requestData, unsigned long requestLength, unsigned char *reply,
                           unsigned long *replySize, unsigned long capacity);

    /// Sends diagnostic data.
    /// - Sent: request 129 on pipe 1, `diagnosticLength` bytes: the data as given.
    /// - Arguments: `diagnosticData` points to `diagnosticLength` bytes; the length is unchecked and goes to the
    ///   driver.
    /// - Errors: 25 an R20, whatever the arguments; 30 `diagnosticData` null; the exchange's own.
    /// - On failure: `diagnosticData` is only read.
    /// - Models: not on an R20.
    int WriteDiagnosticData(unsigned char *diagnosticData, unsigned long diagnosticLength);

    /// \}
    /// \name Serial ports
    /// Ports 0 and 1. Every serial request, also of the following sections, goes to its port's pipe: 3 for port 0, 4
    /// for port 1. The board keeps a port's settings; the library stores none.
    /// \{

    /// Sets the line of a port and what the firmware does with it.
    /// - Sent: request 97 on pipe 3 or 4, 6 bytes: 0 `type`; 1 the format code (`Format` 1 -> 2, 2 -> 1, 5 -> 3, any
    ///   other -> 0); 2 bits 2 and 3 of `Options` as 0 to 3; 3 bit 1 of `Options`; 4 and 5 the divisor:
    ///   - port 0: 1200 98 00, 2400 64 01, 4800 B2 01, 9600 D9 01, 19200 EC 01, 38400 F6 01, 62500 FA 01 (hexadecimal);
    ///   - port 1 (low byte first): 110 BB CA, 300 78 EC, 600 3C F6, 1200 1F FB, 2400 8F FD, 4800 C8 FE, 9600 64 FF,
    ///     14400 98 FF, 19200 B2 FF, 38400 D8 FF, 57600 E6 FF, 62500 E8 FF.
    /// - Arguments: `port` 0 or 1; `settings` as described at `_DCB`; `type` 0 to 3, the meaning is the firmware's.
    /// - Errors: 30 `settings` null; 11 `type` outside 0 to 3; 11 `Format` 5 with a `type` other than 0; 11 `port`
    ///   above 1; 10 the baud rate is not in the port's table; the exchange's own.
    /// - On failure: `settings` is only read.
    int SetConfig(_usbSerialPort port, _DCB *settings, _usbPortType type);

    /// Sends bytes.
    /// - Sent: request 98 on pipe 3 or 4, 1 to 60 data bytes, on a high-speed board 1 to 252: as many exchanges as it
    ///   takes, all but the last full. Nothing for a `length` of 0.
    /// - Arguments: `port` 0 or 1, not looked at if `length` is 0; `data` points to `length` bytes.
    /// - Errors: 30 `data` null; 8 `port` above 1; the exchange's own.
    /// - On failure: the chunks before the failed one have been sent; how many is not told. `data` is only read.
    int Send(_usbSerialPort port, unsigned char *data, unsigned int length);

    /// Receives all bytes that the board holds: asks until it answers with none. **No buffer is surely large enough**,
    /// since bytes may come in as fast as they are fetched: use the form with a capacity.
    /// - Sent: request 99 on pipe 3 or 4. Port 0: 1 byte, a counter of the process from 0 to 255 and again from 0, that
    ///   goes on with every such request of any board, failed ones too. Port 1: no payload. At least one exchange.
    /// - Arguments: `port` 0 or 1.
    /// - Result: `data` receives whatever comes; `length`: the number of bytes, 0 if there were none.
    /// - Errors: 30 `data` or `length` null; 8 `port` above 1; the exchange's own.
    /// - On failure: with 30 nothing is written. Otherwise `length` bytes of `data` were received before the failure (0
    ///   with 8) and are gone from the board; what lies behind them is nothing to rely on.
    int Receive(_usbSerialPort port, unsigned char *data, unsigned long *length);

    /// The same into a buffer of known size: asks only while a whole answer (256 bytes, on an R20 62) fits behind what
    /// is stored. The rest stays on the board for the next call.
    /// - Sent: request 99 on pipe 3 or 4. Port 0: 1 byte, the counter. Port 1: no payload. At least one exchange.
    /// - Arguments: `port` 0 or 1; `capacity` in bytes, 256 (on an R20 62) or more.
    /// - Result: `data` receives at most `capacity` bytes; `length`: their number. If less than a whole answer's room
    ///   is left behind them, more may be waiting: call again.
    /// - Errors: 30 `data` or `length` null; 7 `capacity` below one answer; 8 `port` above 1; the exchange's own.
    /// - On failure: with 30 or 7 nothing is written. Otherwise `data` holds `length` bytes received before the failure
    ///   (0 with 8); they are gone from the board.
    int Receive(_usbSerialPort port, unsigned char *data, unsigned long *length, unsigned long capacity);

    /// Receives one byte with the timestamp that the board gave it. The board hands over a batch, which is kept for all
    /// processes and handed out item by item. Locked across processes.
    ///
    /// There is one batch a device, for both ports and for the 9-bit form too: while it holds items, a call is answered
    /// from it whatever `port` and form it names. Use one port and one form at a time. Neither a replug nor a reopening
    /// nor `SetConfig` empties it: the first items after one may be old, also another program's.
    /// - Sent: request 102 on pipe 3 or 4, no payload, if the kept batch is used up; otherwise nothing.
    /// - Arguments: `port` 0 or 1, looked at only when something is sent.
    /// - Result: `received` 1: `data` (1 byte) and `timestamp` (1 byte, its unit is the firmware's) hold an item; of a
    ///   batch that breaks off after the data byte only `data` is written. `received` 0: a batch of one byte was a
    ///   timestamp alone, now at `timestamp`; or the batch was empty (or of exactly 256 bytes, which counts as empty
    ///   and is lost) and nothing else is written.
    /// - Errors: 30 `data`, `timestamp` or `received` null; 8 `port` above 1; the exchange's own.
    /// - On failure: `data`, `timestamp`, `received` and the batch are untouched.
    int ReceiveByteWithTimestamp(_usbSerialPort port, unsigned char *data, unsigned char *timestamp,
                                 unsigned int *received);

    /// Sends 9-bit words.
    /// - Sent: request 98 on pipe 3 or 4, 2 bytes a word, high byte first: at most 30 words an exchange, on a
    ///   high-speed board 126, as many exchanges as it takes. Nothing for a `count` of 0.
    /// - Arguments: `port` 0 or 1, not looked at if `count` is 0; `data` points to `count` words, sent with all 16
    ///   bits.
    /// - Errors: 30 `data` null; 8 `port` above 1; the exchange's own.
    /// - On failure: the chunks before the failed one have been sent; how many is not told. `data` is only read.
    int Send9BitData(_usbSerialPort port, unsigned short *data, unsigned int count);

    /// Receives all 9-bit words that the board holds, by `Receive`. **No buffer is surely large enough**: use the form
    /// with a capacity.
    /// - Sent: request 99 on pipe 3 or 4. Port 0: 1 byte, the counter of `Receive`. Port 1: no payload.
    /// - Arguments: `port` 0 or 1.
    /// - Result: `data` receives whatever comes, two bytes a word; `count`: the number of whole words. An odd last byte
    ///   is written behind them and not counted.
    /// - Errors: 30 `data` or `count` null; 8 `port` above 1; the exchange's own.
    /// - On failure: with 30 nothing is written. Otherwise `count` is 0, and what was received is lost.
    int Receive9BitData(_usbSerialPort port, unsigned short *data, unsigned long *count);

    /// The same into a buffer of known size: asks only while a whole answer (128 words, on an R20 31) fits behind what
    /// is stored. The rest stays on the board for the next call.
    /// - Sent: request 99 on pipe 3 or 4. Port 0: 1 byte, the counter of `Receive`. Port 1: no payload.
    /// - Arguments: `port` 0 or 1; `capacity` in words, 128 (on an R20 31) or more.
    /// - Result: `data` receives at most `capacity` words; `count`: their number. If less than a whole answer's room is
    ///   left behind them, more may be waiting: call again. An odd last byte is written behind them, not counted and
    ///   lost: a board whose answers cut a word in two needs a `capacity` for all that it can hold.
    /// - Errors: 30 `data` or `count` null; 7 `capacity` below one answer; 8 `port` above 1; the exchange's own.
    /// - On failure: with 30 nothing is written. Otherwise `data` and `count` hold the words that came before it; none
    ///   with 7 and 8.
    int Receive9BitData(_usbSerialPort port, unsigned short *data, unsigned long *count, unsigned long capacity);

    /// Receives one 9-bit word with the timestamp that the board gave it. Locked across processes. One batch a device
    /// is kept, as `ReceiveByteWithTimestamp` says: use one port and one form at a time.
    /// - Sent: request 102 on pipe 3 or 4, no payload, if the kept batch is used up; otherwise nothing.
    /// - Arguments: `port` 0 or 1, looked at only when something is sent.
    /// - Result: `received` 1: `data` (high byte first in the batch) and `timestamp` (1 byte, its unit is the
    ///   firmware's) hold an item; of a batch that breaks off inside an item only what came is written. `received` 0: a
    ///   batch of one byte was a timestamp alone, now at `timestamp`; or the batch was empty (or of exactly 256 bytes,
    ///   which counts as empty and is lost) and nothing else is written.
    /// - Errors: 30 `data`, `timestamp` or `received` null; 8 `port` above 1; the exchange's own.
    /// - On failure: `data`, `timestamp`, `received` and the batch are untouched.
    int ReceiveByteWithTimestamp9BitData(_usbSerialPort port, unsigned short *data, unsigned char *timestamp,
                                         unsigned int *received);

    /// Hands the firmware a message and a time for the port's timeout behaviour, which is the firmware's.
    /// - Sent: request 101 on pipe 3 or 4, `length` + 2 bytes: the time in units of 30 ms, rounded down (0 to 254),
    ///   `length`, the message.
    /// - Arguments: `port` 0 or 1; `message` points to `length` bytes; `length` 0 to 60; `seconds` 0 to 7.6499996: the
    ///   float 7.65f lies just above the limit of 7.65 and is refused.
    /// - Errors: 7 `length` above 60; 8 `seconds` below 0, above 7.65 or not a number; 30 `message` null, also for a
    ///   `length` of 0; 8 `port` above 1; the exchange's own.
    /// - On failure: `message` is only read.
    int SetTimeoutMessage(_usbSerialPort port, unsigned char *message, unsigned char length, float seconds);

    /// Reads the port's count of parity errors.
    /// - Sent: request 100 on pipe 3 or 4, no payload.
    /// - Arguments: `port` 0 or 1.
    /// - Result: `count` 0 to 65535: bytes 0 and 1 of the answer, high byte first.
    /// - Errors: 30 `count` null; 8 `port` above 1; the exchange's own.
    /// - On failure: `count` is untouched.
    int GetParityErrors(_usbSerialPort port, unsigned short *count);

    /// \}
    /// \name SAS
    /// The firmware of R20s and R35 speaks the SAS protocol on a port; an R20 lacks all of this section. Without an
    /// open board these four operations store 25. The meaning of the values is the firmware's.
    /// \{

    /// Sets the machine's SAS address.
    /// - Sent: request 122 on pipe 3 or 4, 1 byte: `address`.
    /// - Arguments: `port` 0 or 1; `address` 0 to 127.
    /// - Errors: 25 an R20 or no board, whatever the arguments; 8 `address` above 127; 8 `port` above 1; the exchange's
    ///   own.
    /// - Models: not on an R20.
    int SetSASMachineAddress(_usbSerialPort port, unsigned char address);

    /// Sets an automatic reply.
    /// - Sent: request 123 on pipe 3 or 4, 2 bytes: the low byte of `reply`, `value`.
    /// - Arguments: `port` 0 or 1; `reply` and `value` unchecked.
    /// - Errors: 25 an R20 or no board, whatever the arguments; 8 `port` above 1; the exchange's own.
    /// - Models: not on an R20.
    int SetSASAutoReply(_usbSerialPort port, unsigned int reply, unsigned char value);

    /// Sets the busy state: `SetSASAutoReply` with a value of 0.
    /// - Sent: request 123 on pipe 3 or 4, 2 bytes: the low byte of `busy`, 0.
    /// - Arguments: `port` 0 or 1; `busy` unchecked.
    /// - Errors: 25 an R20 or no board, whatever the arguments; 8 `port` above 1; the exchange's own.
    /// - Models: not on an R20.
    int SetSASBusy(_usbSerialPort port, unsigned int busy);

    /// Reads the status of the SAS messages.
    /// - Sent: request 124 on pipe 3 or 4, no payload.
    /// - Arguments: `port` 0 or 1.
    /// - Result: `status` 0 to 255: byte 0 of the answer.
    /// - Errors: 25 an R20 or no board, whatever the arguments; 30 `status` null; 8 `port` above 1; the exchange's own.
    /// - On failure: `status` is untouched.
    /// - Models: not on an R20.
    int GetSASMessageStatus(_usbSerialPort port, unsigned int *status);

    /// \}
    /// \name ccTalk and polled RS232
    /// The firmware polls peripherals on a port by itself: it sends the messages of a slot (0 to 3) and keeps the
    /// answers until they are fetched or discarded. It goes on when the program has ended.
    /// \{

    /// Configures a slot for a ccTalk peripheral: a slot of `ConfigureRS232Poll` with the framing 1, 1, 5.
    /// - Sent: request 103 on pipe 3 or 4, 13 to 63 bytes: 0 `slot`, 1 `optionA`, 2 `optionB`, 3 to 5 the numbers 1, 1,
    ///   5; 6 `timeMs` / 10, 7 `optionE`, 8 `optionD`, 9 `optionF`, 10 `optionC`, 11 and 12 the lengths of the
    ///   messages, then the messages. A message's length is its byte 1 plus 5, modulo 256.
    /// - Arguments: `port` 0 or 1; `config` as described at `CCTalkConfig`.
    /// - Errors: 30 `config` null; 8 a message longer than 25 bytes, or `slot`, `optionA` or `optionB` out of range; 8
    ///   `port` above 1; the exchange's own.
    /// - On failure: the record is untouched, except that a `timeMs` above 2550 is replaced by 2550 in `config` once
    ///   the ranges are right, so also before an error of `port` or exchange.
    int ConfigureCCTalkPort(_usbSerialPort port, CCTalkConfig *config);

    /// Configures a slot for a peripheral whose frames carry a length byte.
    /// - Sent: request 103 on pipe 3 or 4, 13 to 63 bytes: 0 `slot`, 1 `optionA`, 2 `optionB`, 3 `framing`, 4
    ///   `lengthIndex`, 5 `lengthExtra`, 6 `timeMs` / 10, 7 `optionE`, 8 `optionD`, 9 `optionF`, 10 `optionC`, 11 and
    ///   12 the lengths of the messages, then the messages. A message's length is its byte `lengthIndex` plus
    ///   `lengthExtra`, modulo 256.
    /// - Arguments: `port` 0 or 1; `config` as described at `RS232PollConfig`.
    /// - Errors: 30 `config` null; 8 `lengthIndex` above 24; 8 a message longer than 25 bytes, or `slot`, `optionA` or
    ///   `optionB` out of range; 8 `port` above 1; the exchange's own.
    /// - On failure: the record is untouched, except that a `timeMs` above 2550 is replaced by 2550 in `config` once
    ///   the ranges are right, so also before an error of `port` or exchange.
    int ConfigureRS232Poll(_usbSerialPort port, RS232PollConfig *config);

    /// Sets the host timeout of a slot.
    /// - Sent: request 121 on pipe 3 or 4, 2 bytes: `slot`, the time in tenths of a second, rounded down (0 to 255).
    /// - Arguments: `port` 0 or 1; `slot` 0 to 3; `seconds` 0 to 25.5. The exact product is cut, and 0.3 is a little
    ///   less than three tenths: it is sent as 2. Add half a tenth (0.35 is sent as 3), but not to 25.5.
    /// - Errors: 8 `seconds` below 0, above 25.5 or not a number, or `slot` above 3; 8 `port` above 1; the exchange's
    ///   own.
    int SetPolledHostTimeout(_usbSerialPort port, unsigned char slot, double seconds);

    /// Empties the answers of a slot.
    /// - Sent: request 104 on pipe 3 or 4, 1 byte: `slot`.
    /// - Arguments: `port` 0 or 1; `slot` 0 to 3.
    /// - Errors: 8 `slot` above 3; 8 `port` above 1; the exchange's own.
    int EmptyPolledBuffer(_usbSerialPort port, unsigned char slot);

    /// Fetches a message of a slot, part by part until the board says that none follows. **No buffer is surely large
    /// enough**: use the form with a capacity.
    /// - Sent: request 105 on pipe 3 or 4, 1 byte: `slot`. At least one exchange.
    /// - Arguments: `port` 0 or 1; `slot` 0 to 3.
    /// - Result: `message` receives bytes 2 onward of every answer, whatever comes; `length`: their number; `status`:
    ///   byte 0 of the last answer, 0 to 255, the firmware's.
    /// - Errors: 30 `message`, `length` or `status` null; 8 `slot` above 3; 8 `port` above 1; 6 after 32,768 answers in
    ///   a row (about half a minute) that have no byte and announce one more; the exchange's own.
    /// - On failure: with 30 or a wrong `slot` nothing is written. Otherwise the parts received before stay in
    ///   `message`, counted at `length` (0 with a wrong `port`), and `status` is that of the last of them.
    int ReceivePolledMessage(_usbSerialPort port, unsigned char slot, unsigned char *message, unsigned long *length,
                             unsigned int *status);

    /// The same into a buffer of known size: asks for the next part only while a whole one (254 bytes, on an R20 60)
    /// fits behind what is stored, then returns 1 with what it has. The next call goes on with the rest.
    /// - Sent: request 105 on pipe 3 or 4, 1 byte: `slot`. At least one exchange.
    /// - Arguments: `port` 0 or 1; `slot` 0 to 3; `capacity` in bytes, 254 (on an R20 60) or more. With one part more
    ///   than the longest message it is never cut in two.
    /// - Result: `message` receives at most `capacity` bytes; `length`: their number; `status`: byte 0 of the last
    ///   answer. If a whole part's room is left, the message is complete; otherwise more of it may follow.
    /// - Errors: 30 `message`, `length` or `status` null; 8 `slot` above 3; 7 `capacity` below one part; 8 `port` above
    ///   1; 6 after 32,768 answers in a row (about half a minute) that have no byte and announce one more; the
    ///   exchange's own.
    /// - On failure: with 30, a wrong `slot` or 7 nothing is written. Otherwise the parts received before stay in
    ///   `message`, counted at `length` (0 with a wrong `port`), and `status` is that of the last of them.
    int ReceivePolledMessage(_usbSerialPort port, unsigned char slot, unsigned char *message, unsigned long *length,
                             unsigned int *status, unsigned long capacity);

    /// Deletes a message of a slot.
    /// - Sent: request 106 on pipe 3 or 4, 1 byte: `slot`.
    /// - Arguments: `port` 0 or 1; `slot` 0 to 3.
    /// - Errors: 8 `slot` above 3; 8 `port` above 1; the exchange's own.
    int DeletePolledMessage(_usbSerialPort port, unsigned char slot);

    /// \}
    /// \name SPI and SEC
    /// Transfers on the board's SPI port, counted in bits. A SEC message is a frame with a checksum in such a transfer.
    /// \{

    /// Switches the SPI port on.
    /// - Sent: request 94 on pipe 7, no payload.
    /// - Errors: the exchange's own.
    int EnableSPI();

    /// Switches the SPI port off.
    /// - Sent: request 95 on pipe 7, no payload.
    /// - Errors: the exchange's own.
    int DisableSPI();

    /// Sends up to 160 bits and receives up to 160.
    /// - Sent: request 96 on pipe 7, 4 to 23 bytes: `sendBits`, `receiveBits`, `spiOption`, the bytes of `txData`.
    /// - Arguments: `sendBits` 1 to 160; `txData` points to `sendBits` / 8 bytes, rounded up; `spiOption` 0 to 255, the
    ///   firmware's; `receiveBits` 0 to 160.
    /// - Result: `rxData` receives the whole answer, up to `usbLargestAnswer` bytes, not only `receiveBits`: give that
    ///   many or use the form with a capacity. Its length is not told.
    /// - Errors: 30 `txData` or `rxData` null; 2 `receiveBits` above 160; 2 `sendBits` 0 or above 160; the exchange's
    ///   own.
    /// - On failure: `rxData` is untouched.
    int SendSPI(unsigned char sendBits, unsigned char *txData, unsigned char spiOption, unsigned char receiveBits,
                unsigned char *rxData);

    /// The same into a buffer of known size.
    /// - Sent: request 96 on pipe 7, 4 to 23 bytes: `sendBits`, `receiveBits`, `spiOption`, the bytes of `txData`.
    /// - Arguments: `sendBits` 1 to 160; `txData` points to `sendBits` / 8 bytes, rounded up; `spiOption` 0 to 255, the
    ///   firmware's; `receiveBits` 0 to 160; `capacity` in bytes, unchecked.
    /// - Result: `rxData` receives as many bytes as came and fit; the rest of the answer is dropped.
    /// - Errors: 30 `txData` or `rxData` null; 2 `receiveBits` above 160; 2 `sendBits` 0 or above 160; the exchange's
    ///   own.
    /// - On failure: `rxData` is untouched.
    int SendSPI(unsigned char sendBits, unsigned char *txData, unsigned char spiOption, unsigned char receiveBits,
                unsigned char *rxData, unsigned long capacity);

    /// Sends a SEC frame and receives the reply, by `SendSPI`.
    /// - Sent: request 96 on pipe 7, 7 to 23 bytes: (`dataLength` + 4) * 8, (`replyLength` + 4) * 8, `spiOption`, then
    ///   the frame: `headerA`, `headerB`, `dataLength`, the data, the sum of these bytes modulo 256.
    /// - Arguments: `headerA`, `headerB`, `spiOption` 0 to 255, unchecked; `dataLength` 0 to 16; `data` points to
    ///   `dataLength` bytes; `replyLength` 0 to 16.
    /// - Result: `rxData` receives the whole answer as it came: `replyLength` + 4 bytes if the board answers with what
    ///   was asked for, but up to `usbLargestAnswer` bytes: give that many or use the form with a capacity. Frame and
    ///   checksum are neither checked nor removed.
    /// - Errors: 30 `data` (also with a `dataLength` of 0) or `rxData` null; 2 `dataLength` above 16; 2 `replyLength`
    ///   above 16; the exchange's own.
    /// - On failure: `rxData` is untouched.
    int SendSEC(unsigned char headerA, unsigned char headerB, unsigned char dataLength, unsigned char *data,
                unsigned char spiOption, unsigned char replyLength, unsigned char *rxData);

    /// The same into a buffer of known size.
    /// - Sent: request 96 on pipe 7, 7 to 23 bytes: (`dataLength` + 4) * 8, (`replyLength` + 4) * 8, `spiOption`, then
    ///   the frame: `headerA`, `headerB`, `dataLength`, the data, the sum of these bytes modulo 256.
    /// - Arguments: `headerA`, `headerB`, `spiOption` 0 to 255, unchecked; `dataLength` 0 to 16; `data` points to
    ///   `dataLength` bytes; `replyLength` 0 to 16; `capacity` in bytes, unchecked.
    /// - Result: `rxData` receives as many bytes as came and fit; the rest of the answer is dropped. Frame and checksum
    ///   are neither checked nor removed.
    /// - Errors: 30 `data` (also with a `dataLength` of 0) or `rxData` null; 2 `dataLength` above 16; 2 `replyLength`
    ///   above 16; the exchange's own.
    /// - On failure: `rxData` is untouched.
    int SendSEC(unsigned char headerA, unsigned char headerB, unsigned char dataLength, unsigned char *data,
                unsigned char spiOption, unsigned char replyLength, unsigned char *rxData, unsigned long capacity);

    /// \}
    /// \name EEPROM
    /// The board carries one serial EEPROM of ten possible types, `E24LC01` to `E24LC512`. Opening finds out which and
    /// configures the board for it, once per device number while the shared memory lives. The configured record is
    /// shared by all processes and bounds `ReadEEPROM` and `WriteEEPROM`. Locked across processes, except that
    /// `CheckEEPROM` gives the lock back between its steps.
    /// \{

    /// Tells the board which EEPROM type is fitted, and remembers the record for this device number.
    /// - Sent: request 3 on pipe 2, 5 bytes: `pageSize`, `addressBytes`, high and low byte of `maxAddress`,
    ///   `busAddress`.
    /// - Arguments: `eeprom` points to one of the constants or a record of your own, unchecked.
    /// - Errors: 30 `eeprom` null; the exchange's own.
    /// - On failure: with 30 nothing changes. After a failed exchange the record is remembered and marked as configured
    ///   all the same, so no later opening mends it: call again. `eeprom` is only read.
    int ConfigureEEPROM(R20EEPROM *eeprom);

    /// The same for a constant record. A template, so that a null literal finds the form above.
    /// - Sent: request 3 on pipe 2, 5 bytes: `pageSize`, `addressBytes`, high and low byte of `maxAddress`,
    ///   `busAddress`.
    /// - Arguments: `eeprom` as above.
    /// - Errors: 30 `eeprom` null; the exchange's own.
    /// - On failure: as above.
    template <class Record>
    int ConfigureEEPROM(const Record *eeprom);

    /// Finds out which EEPROM type is fitted, by the address at which its first 100 bytes appear again. **Follow it
    /// with `ConfigureEEPROM`**: it leaves the board, and the record of this device number, configured for `E24LC256`
    /// or `E24LC16`, whichever it tried last, and marked as configured.
    /// - Sent: request 3 on pipe 2, 5 bytes, for `E24LC256`; then 100 bytes are read by request 5 on pipe 2, 3 bytes,
    ///   two exchanges each, at 0, 4096, 8192, 16384 and 32768, until a read equals the first. If the read at 0 fails:
    ///   request 3 for `E24LC16`, reads at 0, 128, 256, 512 and 1024.
    /// - Result: `eeprom` receives the record of the type found. A chip that holds the same everywhere, as a blank one
    ///   does, or the same 100 bytes again further on, is taken for a smaller one of its family: `E24LC32` or `E24LC01`
    ///   if blank. Something of your own at 8 to 99, found nowhere else, makes later searches exact.
    /// - Errors: 30 `eeprom` null; 6 the board answered a read without data; the exchange's own. Those of the first
    ///   read are cleared.
    /// - On failure: `eeprom` is untouched; after a failed exchange the device number stays configured as said above.
    int CheckEEPROM(R20EEPROM *eeprom);

    /// Reads from the EEPROM.
    /// - Sent: request 5 on pipe 2, 3 bytes, for every 58 bytes or fewer: the number wanted, low and high byte of the
    ///   address. A short answer is followed by a request for the rest. Nothing for a `length` of 0.
    /// - Arguments: `address` 8 or above; `length` in bytes, with the address at most the `maxAddress` that is
    ///   configured for the device number, so the byte at `maxAddress` itself is never reached; `data` has room for
    ///   `length` bytes.
    /// - Result: `data`: `length` bytes.
    /// - Errors: 8 `address` below 8; 8 `address` + `length` above `maxAddress`, or no EEPROM configured; 30 `data`
    ///   null; 6 the board answered without data; the exchange's own.
    /// - On failure: with 8 or 30 nothing is written. Otherwise `data` holds the chunks received before.
    int ReadEEPROM(unsigned short address, unsigned char *data, unsigned int length);

    /// Writes to the EEPROM. The firmware minds pages and write times; nothing is read back.
    /// - Sent: request 4 on pipe 2, 4 to 60 bytes, for every 57 data bytes or fewer: their number, low and high byte of
    ///   the address, the data. Nothing for a `length` of 0.
    /// - Arguments: `address` and `length` as for `ReadEEPROM`; `data` points to `length` bytes.
    /// - Errors: 8 `address` below 8; 8 `address` + `length` above `maxAddress`, or no EEPROM configured; 30 `data`
    ///   null; the exchange's own.
    /// - On failure: with 8 or 30 nothing is sent. Otherwise the chunks before the failed one are written, of that one
    ///   perhaps a part. `data` is only read.
    int WriteEEPROM(unsigned short address, unsigned char *data, unsigned int length);

    /// \}
    /// \name SRAM
    /// The board's memory as bytes from address 0. The last byte that a transfer reaches: R20 0xFFFE, R20s 0x73FFD, R35
    /// 0xF3FFD. On R20s and R35 the library maps an address A, with P = A + 0x4000, to the 16 KiB page P >> 14 (plus 3
    /// if that is above 12) at P & 0x3FFF; a chunk ends where its page ends.
    ///
    /// An R20's firmware image was loaded through the same addresses, from 0 to 15887; whether it still needs them is
    /// the firmware's. On an R20s or R35 that was opened but whose firmware could not be made to run, writing goes to
    /// the firmware's own memory (page 13 onward): do not write then.
    /// \{

    /// Reads from the SRAM, starting below 64 KiB.
    /// - Sent: R20: request 70 on pipe 6, 3 bytes, for every 58 bytes or fewer: the number wanted, low and high byte of
    ///   the address. R20s, R35: request 116 on pipe 6, 5 bytes, for every 60 (high speed 252) bytes or fewer: the
    ///   number wanted, low byte first, the page, the offset in it, low byte first. A short answer is followed by a
    ///   request for the rest. Nothing for a `length` of 0.
    /// - Arguments: `address` 0 to 65535; `length` in bytes, with the address at most 0xFFFF on an R20, 0x73FFE on an
    ///   R20s, 0xF3FFE on an R35; `data` has room for `length` bytes.
    /// - Result: `data`: `length` bytes.
    /// - Errors: 25 out of range, on an R20; 8 out of range, on an R20s or R35; 30 `data` null; 6 the board answered
    ///   without data; the exchange's own.
    /// - On failure: out of range or with 30 nothing is written. Otherwise `data` holds the chunks received before.
    /// - Models: as said.
    int ReadSRAM(unsigned short address, unsigned char *data, unsigned int length);

    /// Writes to the SRAM, starting below 64 KiB.
    /// - Sent: R20: request 71 on pipe 6, 4 to 252 bytes, for every 57 (high speed 249) data bytes or fewer: their
    ///   number, low and high byte of the address, the data. R20s, R35: request 117 on pipe 6, 6 to 252 bytes, for
    ///   every 55 (high speed 247) data bytes or fewer: their number, low byte first, the page, the offset in it, low
    ///   byte first, the data. Nothing for a `length` of 0.
    /// - Arguments: `address` and `length` as for `ReadSRAM`; `data` points to `length` bytes.
    /// - Errors: 25 out of range, on an R20; 8 out of range, on an R20s or R35; 30 `data` null; the exchange's own.
    /// - On failure: out of range or with 30 nothing is sent. Otherwise the chunks before the failed one are written.
    ///   `data` is only read.
    /// - Models: as said.
    int WriteSRAM(unsigned short address, unsigned char *data, unsigned int length);

    /// Reads from the whole SRAM.
    /// - Sent: request 70 on pipe 6 (R20) or request 116 on pipe 6 (R20s, R35), 3 or 5 bytes, as `ReadSRAM`.
    /// - Arguments: `address` 0 to 0xFFFF on an R20, 0x73FFE on an R20s, 0xF3FFE on an R35; `length` in bytes, with the
    ///   address at most the same; `data` has room for `length` bytes.
    /// - Result: `data`: `length` bytes.
    /// - Errors: 25 out of range, on an R20; 8 out of range, on an R20s or R35; 30 `data` null; 6 the board answered
    ///   without data; the exchange's own.
    /// - On failure: out of range or with 30 nothing is written. Otherwise `data` holds the chunks received before.
    /// - Models: as said.
    int ReadLargeSRAM(unsigned long address, unsigned char *data, unsigned long length);

    /// Writes to the whole SRAM.
    /// - Sent: request 71 on pipe 6 (R20) or request 117 on pipe 6 (R20s, R35), at most 252 bytes, as `WriteSRAM`.
    /// - Arguments: `address` and `length` as for `ReadLargeSRAM`; `data` points to `length` bytes.
    /// - Errors: 25 out of range, on an R20; 8 out of range, on an R20s or R35; 30 `data` null; the exchange's own.
    /// - On failure: out of range or with 30 nothing is sent. Otherwise the chunks before the failed one are written.
    ///   `data` is only read.
    /// - Models: as said.
    int WriteLargeSRAM(unsigned long address, unsigned char *data, unsigned long length);

    /// \}
    /// \name Clock and security switches
    /// The board runs a clock, keeps a log of its security switches with the time of each event, and latches flags.
    /// Units and start of the clock, the bits of switches and flags and how the log's end shows are the firmware's.
    /// Times are 32 bits, also where `unsigned long` has 64.
    /// \{

    /// Sets the clock.
    /// - Sent: request 20 on pipe 5, 4 bytes: the low 32 bits of `time`, low byte first.
    /// - Arguments: `time` unchecked.
    /// - Errors: the exchange's own.
    int SetClock(unsigned long time);

    /// Reads the clock.
    /// - Sent: request 21 on pipe 5, no payload.
    /// - Result: `time`: bytes 0 to 3 of the answer, low byte first.
    /// - Errors: 30 `time` null; the exchange's own.
    /// - On failure: `time` is untouched.
    int GetClock(unsigned long *time);

    /// Reads the next event of the switch log, after `StartSecuritySwitchRead`.
    /// - Sent: request 41 on pipe 5, no payload.
    /// - Result: `time`: bytes 0 to 3 of the answer, low byte first; `switches` (1 byte): byte 4.
    /// - Errors: 30 `time` or `switches` null; the exchange's own, perhaps a status that marks the log's end.
    /// - On failure: `time` and `switches` are untouched.
    int NextSecuritySwitchRead(unsigned long *time, unsigned char *switches);

    /// Begins reading the switch log.
    /// - Sent: request 40 on pipe 5, no payload.
    /// - Errors: the exchange's own.
    int StartSecuritySwitchRead();

    /// Clears the security switches.
    /// - Sent: request 42 on pipe 5, no payload.
    /// - Errors: the exchange's own.
    int ClearSecuritySwitches();

    /// Reads the latched switch flags; the board resets them. After a failed exchange they may be lost.
    /// - Sent: request 64 on pipe 5, no payload.
    /// - Result: `flagsA`, `flagsB` (1 byte each): bytes 0 and 1 of the answer.
    /// - Errors: 30 `flagsA` or `flagsB` null; the exchange's own.
    /// - On failure: `flagsA` and `flagsB` are untouched.
    int ReadAndResetSecuritySwitchFlags(unsigned char *flagsA, unsigned char *flagsB);

    /// Reads the battery-failure flag; the board resets it. After a failed exchange it may be lost.
    /// - Sent: request 119 on pipe 5, no payload.
    /// - Result: `flag` (1 byte): byte 0 of the answer.
    /// - Errors: 25 an R20, whatever the argument; 30 `flag` null; the exchange's own.
    /// - On failure: `flag` is untouched.
    /// - Models: not on an R20.
    int ReadAndResetBatteryFailFlag(unsigned char *flag);

    /// Reads and resets the board's cached switch flags; what separates them from those of
    /// `ReadAndResetSecuritySwitchFlags` is the firmware's, the library caches nothing.
    /// - Sent: request 67 on pipe 5, no payload.
    /// - Result: `flagsA`, `flagsB` (1 byte each): bytes 0 and 1 of the answer.
    /// - Errors: 30 `flagsA` or `flagsB` null; the exchange's own.
    /// - On failure: `flagsA` and `flagsB` are untouched.
    int CachedReadAndResetSecuritySwitchFlags(unsigned char *flagsA, unsigned char *flagsB);

    /// \}
    /// \name Random numbers
    /// All processes draw from the board's one generator. What it answers while it is off is the firmware's.
    /// \{

    /// Switches the generator on.
    /// - Sent: request 69 on pipe 5, 4 bytes: the low 32 bits of `setting`, low byte first.
    /// - Arguments: `setting` unchecked; the meaning is the firmware's.
    /// - Errors: the exchange's own.
    int EnableRandomNumberGenerator(unsigned long setting);

    /// Switches the generator off.
    /// - Sent: request 118 on pipe 5, no payload.
    /// - Errors: the exchange's own.
    int DisableRandomNumberGenerator();

    /// Draws a number.
    /// - Sent: request 68 on pipe 5, no payload.
    /// - Result: `number` 0 to 65535: bytes 0 and 1 of the answer, low byte first.
    /// - Errors: 30 `number` null; the exchange's own.
    /// - On failure: `number` is untouched.
    int GetRandomNumber(unsigned short *number);

    /// \}
    /// \name Clock failures
    /// On an R35 only.
    /// \{

    /// Reads the clock-failure flag; the board resets it. After a failed exchange it may be lost.
    /// - Sent: request 220 on pipe 5, no payload.
    /// - Result: `flag` (1 byte): byte 0 of the answer.
    /// - Errors: 25 an R20; 26 an R20s, both whatever the argument; 30 `flag` null; the exchange's own.
    /// - On failure: `flag` is untouched.
    /// - Models: only on an R35.
    int ReadAndResetRTCFailure(unsigned char *flag);

    /// Reads what the clock showed when the battery failed.
    /// - Sent: request 221 on pipe 5, no payload.
    /// - Result: `time`: bytes 0 to 3 of the answer, low byte first.
    /// - Errors: 25 an R20; 26 an R20s, both whatever the argument; 30 `time` null; the exchange's own.
    /// - On failure: `time` is untouched.
    /// - Models: only on an R35.
    int ReadClockAtBatteryFailure(unsigned long *time);

    /// \}
    /// \name Copies
    /// The copy and its original use the same open board, or none.
    /// \{

    /// Shares the board of another object.
    /// - Sent: nothing.
    /// - Arguments: `other` keeps its board.
    SorvaneUSB(SorvaneUSB &other);
    /// The same for a constant object.
    /// - Sent: nothing.
    /// - Arguments: `other` keeps its board.
    SorvaneUSB(const SorvaneUSB &other);
    /// Lets go of this object's board as `close` does, then shares the other's. Nothing happens from an object to
    /// itself.
    /// - Sent: nothing.
    /// - Arguments: `other` keeps its board; if it has none, this object has none afterwards.
    /// - Result: this object.
    SorvaneUSB &operator=(SorvaneUSB &other);
    /// The same for a constant object.
    /// - Sent: nothing.
    /// - Arguments: `other` keeps its board; if it has none, this object has none afterwards.
    /// - Result: this object.
    SorvaneUSB &operator=(const SorvaneUSB &other);

    /// \}
    /// \name Opening by device number, closing
    /// \{

    /// Opens board `deviceNo` and makes it ready. In this order: model and speed from /sys/class/Vexa; lets go of the
    /// board that this object has; opens `/dev/Vexa_<n>`; waits while another opening makes the same board ready;
    /// firmware as `Download8051Software`; and, unless some process has configured this device number's EEPROM already,
    /// `CheckEEPROM` and `ConfigureEEPROM`.
    /// - Sent: as `Download8051Software`, then perhaps as `CheckEEPROM` and as `ConfigureEEPROM`.
    /// - Arguments: `deviceNo` 0 to 15; any other number is a missing board.
    /// - Result: 1 with the board open and ready.
    /// - Errors: no code if the board is missing, its model or speed unknown, its node not to be opened (permissions),
    ///   or memory exhausted; the exchange's own.
    /// - On failure: a missing or unknown board leaves open what was open. A node that cannot be opened, or exhausted
    ///   memory, leaves the object without a board. A failed preparation leaves the new board open but not ready:
    ///   `close` it or open again.
    int InitPort(int deviceNo);

    /// Lets go of the board; the last object that shares it closes the node. The board is not told and goes on with
    /// what it does.
    /// - Sent: nothing.
    /// - Result: 1, also when nothing was open.
    int close();

    /// \}
    /// \name Any request
    /// \{

    /// Makes one exchange with a request of your own. What the library keeps does not follow: neither the flash
    /// patterns nor the EEPROM's record nor whether the firmware runs. Not locked.
    /// - Sent: nothing of its own: `request` on `pipe` with the `outLength` bytes at `outData`, once.
    /// - Arguments: `request` 0 to 255; `pipe` 1 to 7, its lower end unchecked; `outLength` in bytes, on an R20 up to
    ///   511; `outData` may be null if `outLength` is 0 (an R20 sends zeros for a null with a length; R20s and R35 hand
    ///   it to the driver).
    /// - Result: `inData` receives whatever the board answers: give `usbLargestAnswer` bytes. It may be null on an R20,
    ///   where at most 62 bytes come. `inLength`: the number of bytes; it is not read.
    /// - Errors: 3 `pipe` above 7, not on an R20, with the line "pipeNum = " and the number on the standard error
    ///   stream; 30 `inLength` null; 7 `outLength` above 511, on an R20; the exchange's own.
    /// - On failure: with 3, 30 or 7 before sending, and on an R20 always, `inData` and `inLength` are untouched. On an
    ///   R20s or R35 `inLength` is 0 after a failed driver call, code 6; after a status, which may be 6 too, both hold
    ///   what the driver wrote.
    /// - Models: as said.
    int PerformUSBIO(unsigned char request, int pipe, unsigned char *outData, unsigned long outLength,
                     unsigned char *inData, unsigned long *inLength);

    /// \}
    /// \name Versions of the library
    /// No board is needed. SORVANEUSB_VERSION, above, is the version that a program was compiled with.
    /// \{

    /// Tells the version of the product.
    /// - Sent: nothing.
    /// - Result: `version`: the text "3" with its terminating zero, 2 bytes.
    /// - Errors: 30 `version` null.
    /// - On failure: nothing is written.
    int GetProductVersion(unsigned char *version);

    /// Tells the version of the library.
    /// - Sent: nothing.
    /// - Result: `version`: the text "13" with its terminating zero, 3 bytes.
    /// - Errors: 30 `version` null.
    /// - On failure: nothing is written.
    int GetDllVersion(unsigned char *version);

    /// \}

private:
    // Shared with the copies, counted; null without a board.
    RBaseImplementation *implementation;
};

template <class Record>
int SorvaneUSB::ConfigureEEPROM(const Record *eeprom)
{
    const R20EEPROM *record = eeprom;
    return ConfigureEEPROM(const_cast<R20EEPROM *>(record));  // which only reads it
}

/// Tells the model behind a device number without opening it, from `/sys/class/Vexa/Vexa_<n>/device/product`.
/// - Sent: nothing.
/// - Arguments: `deviceNo`; boards that can be opened have 0 to 15.
/// - Result: 1 R20, 2 R20s, 3 R35; -1 if there is no such board or its model is unknown. No code is stored.
SORVANE_API int GetBoardType(int deviceNo);

/// Tells the USB speed of a device number without opening it, from `/sys/class/Vexa/Vexa_<n>/device/speed`.
/// - Sent: nothing.
/// - Arguments: `deviceNo`; boards that can be opened have 0 to 15.
/// - Result: 1 full speed (12 Mbit/s), 2 high speed (480 Mbit/s); -1 if there is no such board or its speed is another.
///   No code is stored.
SORVANE_API int LocalGetBoardSpeed(int deviceNo);

/// Says in a sentence what a code means and what to try; for code 0, what to try after an opening that failed without
/// one.
/// - Sent: nothing.
/// - Arguments: `code` as `GetLastError` returns it; any other number is described as a status of board or driver. A
///   board may send a status that equals a code of the library: the sentence of such a code says so.
/// - Result: a static text, never null, not to be freed.
SORVANE_API const char *usbErrorText(int code);

#endif
