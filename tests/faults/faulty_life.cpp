// The whole life of a program with a board: the library's load, opening, operations of each kind, closing, unload.
// What each comes to is told line by line: "= " what a caller sees, "~ " what was seen of the locks.
//
//     faulty_life [MODEL]            1 R20, 2 R20s, 3 R35 (3)
//     faulty_life MODEL PROGRAM...   opens a board and becomes the program
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

#include "sim/inprocess/inprocess.h"
#include "sorvaneusb.h"
#include "tests/faults/faulty_calls.h"

namespace
{

constexpr int deviceNo = 3;

unsigned int descriptors()
{
    unsigned int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd"))
        count += entry.path().empty() ? 0 : 1;
    return count;
}

/// The bytes that the board was sent last: they show what the flash patterns hold.
std::string lastPayload()
{
    const auto &exchanges = sim::inProcessBoards().find(deviceNo)->exchanges();
    std::string text;
    for (unsigned char byte : exchanges.empty() ? sim::Bytes() : sim::Bytes(exchanges.back().sent)) {
        char hex[3];
        std::snprintf(hex, sizeof hex, "%02X", byte);
        text += hex;
    }
    return text;
}

int setLamp(SorvaneUSB &board)
{
    return board.SetOutputBit(usbOutput12, 1);
}

int flash(SorvaneUSB &board)
{
    return board.SetOnPeriodOutputBit(usbOutputByte1, 2, 1);
}

int flashOff(SorvaneUSB &board)
{
    return board.SetOffPeriodOutputBit(usbOutputByte2, 3, 1);
}

int configureChip(SorvaneUSB &board)
{
    return board.ConfigureEEPROM(&E24LC256);
}

int writeChip(SorvaneUSB &board)
{
    unsigned char data[70] = {1, 2, 3};
    return board.WriteEEPROM(100, data, sizeof data);
}

int readChip(SorvaneUSB &board)
{
    unsigned char data[70];
    return board.ReadEEPROM(100, data, sizeof data);
}

int checkChip(SorvaneUSB &board)
{
    R20EEPROM found;
    return board.CheckEEPROM(&found);
}

int receiveStamped(SorvaneUSB &board)
{
    unsigned char data, time;
    unsigned int received;
    return board.ReceiveByteWithTimestamp(usbSerialPort0, &data, &time, &received);
}

int receiveAll(SorvaneUSB &board)
{
    unsigned char data[600];
    unsigned long length;
    return board.Receive(usbSerialPort0, data, &length, sizeof data);
}

int sendMuch(SorvaneUSB &board)
{
    unsigned char data[300] = {};
    return board.Send(usbSerialPort1, data, sizeof data);
}

int memory(SorvaneUSB &board)
{
    unsigned char data[300] = {};
    return board.WriteSRAM(20000, data, sizeof data) && board.ReadSRAM(20000, data, sizeof data);
}

int inputs(SorvaneUSB &board)
{
    usbInput all;
    return board.GetInputs(&all);
}

struct Operation {
    const char *name;
    int (*run)(SorvaneUSB &board);
};

constexpr Operation operations[] = {
    {"lamp", setLamp},       {"flash", flash},   {"flash-off", flashOff}, {"configure", configureChip},
    {"write", writeChip},    {"read", readChip}, {"check", checkChip},    {"stamped", receiveStamped},
    {"receive", receiveAll}, {"send", sendMuch}, {"memory", memory},      {"inputs", inputs},
};

void tell(const char *name, int result, SorvaneUSB &board)
{
    std::printf("= %s %d error %d %s\n", name, result, board.GetLastError(), result ? lastPayload().c_str() : "");
    std::printf("~ %s %s\n", name, tests::takeObservation().c_str());
    std::fflush(stdout);
    board.ClearErrors();
}

int open(SorvaneUSB &board)
{
    return board.InitPort(deviceNo);
}

void live()
{
    const unsigned int before = descriptors();
    SorvaneUSB board;
    tell("open", open(board), board);
    for (const Operation &operation : operations)
        tell(operation.name, operation.run(board), board);
    // What went wrong once is over: close and open again.
    board.close();
    sim::inProcessBoards().find(deviceNo)->clearExchanges();
    tell("open-again", open(board), board);
    tell("lamp-again", setLamp(board), board);
    tell("inputs-again", inputs(board), board);
    board.close();
    std::printf("= descriptors %s\n", descriptors() == before ? "closed" : "LEFT OPEN");
}

}  // namespace

int main(int count, char **arguments)
{
    ::alarm(30);  // whoever waits for ever is a failure
    const int model = count > 1 ? std::atoi(arguments[1]) : 3;
    constexpr sim::Model models[] = {sim::Model::R20, sim::Model::R20s, sim::Model::R35};
    sim::inProcessBoards().plug(deviceNo, models[(model - 1) % 3]).highSpeed();
    if (count > 2) {
        SorvaneUSB board;
        open(board);
        ::execvp(arguments[2], arguments + 2);
        return 127;
    }
    live();
    return 0;
}
