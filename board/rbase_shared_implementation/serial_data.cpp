// Data of the serial ports: plain bytes, 9-bit words (high byte first on the wire), and bytes or words with the time
// that the firmware stamped on each.
#include "board/exchange.h"
#include "board/rbase_shared_implementation/serial_port.h"
#include "board/rbase_shared_implementation/shared_board_state.h"

#include <algorithm>

namespace
{

/// Numbers the receive requests of port 0, for all boards of the process. It counts failed exchanges, too.
constinit unsigned char message_id = 0;

constexpr unsigned int largestChunk = 252;

unsigned int chunkFor(const RBaseImplementation &board)
{
    return board.isHighSpeed() ? largestChunk : 60;
}

}  // namespace

int RBaseImplementation::Send(_usbSerialPort port, unsigned char *data, unsigned int length)
{
    if (!data)
        return Fail(usbErrorNullPointer);
    const unsigned int chunk = chunkFor(*this);
    for (unsigned int done = 0; done < length;) {
        const unsigned int n = std::min(chunk, length - done);
        if (!isSerialPort(port))
            return Fail(usbErrorParameter);
        if (!TellWith(onPort(Request::Send, port), data + done, n))
            return 0;
        done += n;
    }
    return 1;
}

int RBaseImplementation::Send9BitData(_usbSerialPort port, unsigned short *data, unsigned int count)
{
    if (!data)
        return Fail(usbErrorNullPointer);
    const unsigned int wordsPerChunk = chunkFor(*this) / 2;
    for (unsigned int done = 0; done < count;) {
        const unsigned int n = std::min(wordsPerChunk, count - done);
        unsigned char bytes[largestChunk];
        for (unsigned int k = 0; k < n; ++k) {
            bytes[2 * k] = high(data[done + k]);
            bytes[2 * k + 1] = low(data[done + k]);
        }
        if (!isSerialPort(port))
            return Fail(usbErrorParameter);
        if (!TellWith(onPort(Request::Send, port), bytes, 2 * n))
            return 0;
        done += n;
    }
    return 1;
}

int RBaseImplementation::AskForSerialData(_usbSerialPort port, unsigned char *data, unsigned long *count)
{
    if (!isSerialPort(port))
        return Fail(usbErrorParameter);
    *count = 0;
    const Request request = onPort(Request::Receive, port);
    if (port == usbSerialPort1)
        return PerformUSBIO(codeOf(request), pipeOf(request), nullptr, 0, data, count);
    unsigned char id = message_id++;
    return PerformUSBIO(codeOf(request), pipeOf(request), &id, sizeof id, data, count);
}

int RBaseImplementation::Receive(_usbSerialPort port, unsigned char *data, unsigned long *length)
{
    if (!data || !length)
        return Fail(usbErrorNullPointer);
    *length = 0;
    for (;;) {
        unsigned long received;
        if (!AskForSerialData(port, data + *length, &received))
            return 0;
        *length += received;
        if (received == 0)
            return 1;
    }
}

namespace
{

/// Turns received bytes, high byte first, into words in place and returns their number.
unsigned long wordsInPlace(unsigned short *data, unsigned long bytes)
{
    const unsigned long count = bytes / 2;
    for (unsigned long k = 0; k < count; ++k) {
        unsigned char pair[2];
        std::memcpy(pair, data + k, sizeof pair);
        data[k] = static_cast<unsigned short>(pair[0] << 8 | pair[1]);
    }
    return count;
}

}  // namespace

int RBaseImplementation::Receive9BitData(_usbSerialPort port, unsigned short *data, unsigned long *count)
{
    if (!data || !count)
        return Fail(usbErrorNullPointer);
    *count = 0;
    unsigned long bytes = 0;
    if (!Receive(port, reinterpret_cast<unsigned char *>(data), &bytes))
        return 0;
    *count = wordsInPlace(data, bytes);
    return 1;
}

int RBaseImplementation::Receive(_usbSerialPort port, unsigned char *data, unsigned long *length,
                                 unsigned long capacity)
{
    if (!data || !length)
        return Fail(usbErrorNullPointer);
    const unsigned long largest = LargestAnswer();
    if (capacity < largest)
        return Fail(usbErrorLength);
    *length = 0;
    while (capacity - *length >= largest) {
        Response<0> response;
        if (!AskForSerialData(port, response.bytes, &response.count))
            return 0;
        response.settle();
        std::memcpy(data + *length, response.bytes, response.count);
        *length += response.count;
        if (response.count == 0)
            break;
    }
    return 1;
}

int RBaseImplementation::Receive9BitData(_usbSerialPort port, unsigned short *data, unsigned long *count,
                                         unsigned long capacity)
{
    if (!data || !count)
        return Fail(usbErrorNullPointer);
    *count = 0;
    const unsigned long mostWords = ~0UL / sizeof(unsigned short);
    unsigned long bytes = 0;
    const int result = Receive(port, reinterpret_cast<unsigned char *>(data), &bytes,
                               sizeof(unsigned short) * std::min(capacity, mostWords));
    *count = wordsInPlace(data, bytes);  // what came before a failure has left the board and is not lost
    return result;
}

/// Up to two bytes of data and a time, as they were taken from a batch.
struct TimestampedItem {
    unsigned int hasData() const { return count > 0 && !timeAlone ? 1 : 0; }

    unsigned char bytes[3] = {};
    unsigned int count;
    bool timeAlone;  // a batch of one byte
};

int RBaseImplementation::NextTimestampedItem(_usbSerialPort port, unsigned int size, TimestampedItem &item)
{
    ReceiveBuffer &buffer = receiveBuffer(GetDeviceNo());
    if (buffer.empty()) {
        if (!isSerialPort(port))
            return Fail(usbErrorParameter);
        Response<0> response;
        if (!Ask(onPort(Request::ReceiveWithTimestamps, port), response))
            return 0;
        buffer.fill(response.bytes, response.count);
    }
    item.timeAlone = buffer.count == 1;
    item.count = buffer.take(item.bytes, size);
    return 1;
}

int RBaseImplementation::ReceiveByteWithTimestamp(_usbSerialPort port, unsigned char *data, unsigned char *timestamp,
                                                  unsigned int *received)
{
    SharedObjectLock lock(SharedserialRxBuffer);
    if (!data || !timestamp || !received)
        return Fail(usbErrorNullPointer);
    TimestampedItem item;
    if (!NextTimestampedItem(port, 2, item))
        return 0;
    if (item.timeAlone) {
        *timestamp = item.bytes[0];
    } else {
        if (item.count > 0)
            *data = item.bytes[0];
        if (item.count > 1)
            *timestamp = item.bytes[1];
    }
    *received = item.hasData();
    return 1;
}

int RBaseImplementation::ReceiveByteWithTimestamp9BitData(_usbSerialPort port, unsigned short *data,
                                                          unsigned char *timestamp, unsigned int *received)
{
    SharedObjectLock lock(SharedserialRxBuffer);
    if (!data || !timestamp || !received)
        return Fail(usbErrorNullPointer);
    TimestampedItem item;
    if (!NextTimestampedItem(port, 3, item))
        return 0;
    if (item.timeAlone) {
        *timestamp = item.bytes[0];
    } else {
        if (item.count > 0)
            *data = static_cast<unsigned short>(item.bytes[0] << 8 | (item.count > 1 ? item.bytes[1] : 0));
        if (item.count > 2)
            *timestamp = item.bytes[2];
    }
    *received = item.hasData();
    return 1;
}

int RBaseImplementation::GetParityErrors(_usbSerialPort port, unsigned short *count)
{
    if (!count)
        return Fail(usbErrorNullPointer);
    if (!isSerialPort(port))
        return Fail(usbErrorParameter);
    Response<2> response;
    if (!Ask(onPort(Request::GetParityErrors, port), response))
        return 0;
    *count = response.u16be(0);
    return 1;
}
