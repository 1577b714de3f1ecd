// A coin acceptor that speaks the ccTalk protocol: the board polls it by itself, the program collects the answers.
#include "report.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

namespace
{

constexpr _usbSerialPort port = usbSerialPort0;
constexpr unsigned char slot = 0;
constexpr unsigned char hostAddress = 1;
constexpr unsigned char acceptorAddress = 2;
constexpr unsigned char readBufferedCredit = 229;  // ccTalk header: event counter, then five events of two bytes
constexpr unsigned char simplePoll = 254;

/// A ccTalk frame without data: destination, length, source, header, checksum. The sum of all bytes is 0.
void frame(unsigned char *message, unsigned char header)
{
    const unsigned char bytes[] = {acceptorAddress, 0, hostAddress, header,
                                   static_cast<unsigned char>(-(acceptorAddress + hostAddress + header))};
    std::memcpy(message, bytes, sizeof bytes);
}

bool configure(SorvaneUSB &board)
{
    _DCB line = {};
    line.BaudRate = 9600;
    CCTalkConfig config = {};
    config.slot = slot;
    config.timeMs = 100;
    frame(config.message1, readBufferedCredit);
    frame(config.message2, simplePoll);
    return succeeded(board.SetConfig(port, &line, usbPortType1), board, "SetConfig") &&
           succeeded(board.ConfigureCCTalkPort(port, &config), board, "ConfigureCCTalkPort") &&
           succeeded(board.SetPolledHostTimeout(port, slot, 0.5), board, "SetPolledHostTimeout") &&
           succeeded(board.EmptyPolledBuffer(port, slot), board, "EmptyPolledBuffer");
}

/// Prints the coins since the last event that has been seen.
void printCoins(const unsigned char *answer, unsigned long length, unsigned char &lastEvent)
{
    constexpr unsigned long headerBytes = 4;
    constexpr unsigned long creditBytes = 11;
    if (length < headerBytes + creditBytes + 1 || answer[1] != creditBytes)
        return;
    const unsigned char event = answer[headerBytes];
    const unsigned char fresh = static_cast<unsigned char>(event - lastEvent);
    lastEvent = event;
    for (int k = fresh < 5 ? fresh : 5; k > 0; --k)
        std::printf("Coin of type %d\n", answer[headerBytes + 2U * static_cast<unsigned int>(k) - 1]);
}

bool collect(SorvaneUSB &board)
{
    unsigned char lastEvent = 0;
    for (int look = 0; look < 10; ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        unsigned char answer[2 * usbLargestAnswer];
        unsigned long length = 0;
        unsigned int status = 0;
        if (!succeeded(board.ReceivePolledMessage(port, slot, answer, &length, &status, sizeof answer), board,
                       "ReceivePolledMessage"))
            return false;
        if (length > 0)
            printCoins(answer, length, lastEvent);
        if (!succeeded(board.DeletePolledMessage(port, slot), board, "DeletePolledMessage"))
            return false;
    }
    return true;
}

}  // namespace

int main()
{
    SorvaneUSB board;
    if (!succeeded(board.init(0), board, "Opening the first board") || !configure(board))
        return 1;
    std::printf("Polling the acceptor for a second\n");
    return collect(board) ? 0 : 1;
}
