// The attract mode of a game: finds the first board, looks at its inputs, lets the lamps chase each other, and counts
// its own starts in a meter in the board's EEPROM.
#include "report.h"

#include <chrono>
#include <cstdio>
#include <thread>

namespace
{

constexpr unsigned short meterAddress = 8;          // addresses 0 to 7 are reserved
constexpr unsigned char meterMark[2] = {'S', 'M'};  // in front of the count: a new chip holds anything

const char *modelName(unsigned char type)
{
    switch (type) {
    case 1:
        return "R20";
    case 2:
        return "R20s";
    case 3:
        return "R35";
    default:
        return "unknown model";
    }
}

bool describe(SorvaneUSB &board, usbInput &inputs)
{
    unsigned char type = 0;
    unsigned char speed = 0;
    unsigned char version[usbLargestAnswer + 1] = {};
    if (!succeeded(board.GetFittedBoard(&type), board, "GetFittedBoard") ||
        !succeeded(board.GetBoardSpeed(&speed), board, "GetBoardSpeed") ||
        !succeeded(board.Get8051Version(version, usbLargestAnswer), board, "Get8051Version") ||
        !succeeded(board.GetInputs(&inputs), board, "GetInputs"))
        return false;
    std::printf("Found an %s at %s speed, firmware \"%s\", board number %d\n", modelName(type),
                speed == 2 ? "high" : "full", reinterpret_cast<const char *>(version), inputs.bits[3] & 7);
    return true;
}

void showInputs(const usbInput &inputs)
{
    std::printf("Inputs 0 to 23:");
    for (unsigned int n = 0; n < 24; ++n)
        std::printf("%s%d", n % 8 == 0 ? " " : "", inputs.bits[n / 8] >> n % 8 & 1);
    std::printf("\n");
}

bool chaseLamps(SorvaneUSB &board)
{
    std::printf("Lamps 0 to 15 chase each other once\n");
    for (unsigned int lamp = 0; lamp < 16; ++lamp) {
        usbOutput off = {};
        usbOutput on = {};
        const unsigned int before = (lamp + 15) % 16;
        off.bits[before / 8] = static_cast<unsigned char>(1 << before % 8);
        on.bits[lamp / 8] = static_cast<unsigned char>(1 << lamp % 8);
        if (!succeeded(board.ModifyOutputs(&off, &on), board, "ModifyOutputs"))
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return succeeded(board.SetOutputBit(usbOutput15, 0), board, "SetOutputBit");
}

bool countStart(SorvaneUSB &board)
{
    unsigned char record[6] = {};
    if (!succeeded(board.ReadEEPROM(meterAddress, record, sizeof record), board, "ReadEEPROM"))
        return false;
    const bool written = record[0] == meterMark[0] && record[1] == meterMark[1];
    unsigned long starts = 0;
    for (int k = 3; written && k >= 0; --k)
        starts = starts << 8 | record[2 + k];
    ++starts;
    record[0] = meterMark[0];
    record[1] = meterMark[1];
    for (int k = 0; k < 4; ++k)
        record[2 + k] = static_cast<unsigned char>(starts >> 8 * k);
    if (!succeeded(board.WriteEEPROM(meterAddress, record, sizeof record), board, "WriteEEPROM"))
        return false;
    std::printf("The meter in the EEPROM counts %lu start%s\n", starts, starts == 1 ? "" : "s");
    return true;
}

}  // namespace

int main()
{
    SorvaneUSB board;
    usbInput inputs;
    if (!succeeded(board.init(0), board, "Opening the first board"))
        return 1;
    if (!describe(board, inputs))
        return 1;
    showInputs(inputs);
    if (!chaseLamps(board) || !countStart(board))
        return 1;
    board.close();
    std::printf("The board is closed; whatever was lit stays lit\n");
    return 0;
}
