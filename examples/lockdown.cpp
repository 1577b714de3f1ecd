// What a machine checks after it was switched off: who opened it, whether the battery held, which board this is.
#include "report.h"

#include <cstdio>

namespace
{

/// The log is read event by event; the virtual boards end it with a refusal, as a board's firmware may.
bool walkSwitchLog(SorvaneUSB &board)
{
    if (!succeeded(board.StartSecuritySwitchRead(), board, "StartSecuritySwitchRead"))
        return false;
    int events = 0;
    unsigned long time = 0;
    unsigned char switches = 0;
    constexpr int mostEvents = 1000;
    while (events < mostEvents && board.NextSecuritySwitchRead(&time, &switches)) {
        std::printf("At %lu the switches were 0x%02X\n", time, switches);
        ++events;
    }
    board.ClearErrors();
    std::printf("%d events in the switch log\n", events);
    unsigned char flagsA = 0;
    unsigned char flagsB = 0;
    if (!succeeded(board.ReadAndResetSecuritySwitchFlags(&flagsA, &flagsB), board, "ReadAndResetSecuritySwitchFlags"))
        return false;
    std::printf("Switch flags since the last look: 0x%02X 0x%02X\n", flagsA, flagsB);
    return true;
}

/// A function that the model lacks is no failure of the machine.
bool optional(int result, SorvaneUSB &board, const char *operation)
{
    if (result)
        return true;
    const int code = board.GetLastError();
    if (code == usbErrorNotSupported || code == usbErrorNotSupportedR20s)
        std::printf("%s: not on this model\n", operation);
    else
        succeeded(0, board, operation);
    board.ClearErrors();
    return false;
}

bool checkClock(SorvaneUSB &board)
{
    unsigned long time = 0;
    unsigned char flag = 0;
    if (!succeeded(board.GetClock(&time), board, "GetClock"))
        return false;
    std::printf("The clock reads %lu\n", time);
    if (optional(board.ReadAndResetBatteryFailFlag(&flag), board, "Battery flag"))
        std::printf("Battery %s\n", flag ? "FAILED" : "good");
    if (optional(board.ReadAndResetRTCFailure(&flag), board, "Clock failure flag"))
        std::printf("Clock %s\n", flag ? "FAILED" : "kept running");
    if (optional(board.ReadClockAtBatteryFailure(&time), board, "Time of the battery failure"))
        std::printf("Time of the last battery failure: %lu\n", time);
    return true;
}

void printBytes(const char *what, const unsigned char *bytes, int count)
{
    std::printf("%s:", what);
    for (int k = 0; k < count; ++k)
        std::printf(" %02X", bytes[k]);
    std::printf("\n");
}

bool identify(SorvaneUSB &board)
{
    unsigned char serial[8] = {};
    unsigned char crcValid = 0;
    if (!succeeded(board.GetPICSerialNumber(serial, sizeof serial), board, "GetPICSerialNumber"))
        return false;
    printBytes("PIC serial number", serial, sizeof serial);
    if (optional(board.GetDallasSerialNumber(serial, &crcValid, sizeof serial), board, "1-Wire number")) {
        printBytes("1-Wire number", serial, sizeof serial);
        std::printf("Its check byte is %s\n", crcValid ? "right" : "WRONG");
    }
    return true;
}

}  // namespace

int main()
{
    SorvaneUSB board;
    if (!succeeded(board.init(0), board, "Opening the first board"))
        return 1;
    return walkSwitchLog(board) && checkClock(board) && identify(board) ? 0 : 1;
}
