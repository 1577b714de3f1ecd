// A process that drives the shared board, told what to do line by line (see tests/support/peer.h).
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <random>
#include <sorvaneusb.h>
#include <sstream>
#include <string>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "board/rbase_shared_implementation/shared_board_state.h"
#include "tests/stress/recording_driver.h"

namespace
{

using stress::boardDevice;

/// Before the library is loaded, and before the C library is: waits at the gate, a FIFO that opens to all its readers
/// at the same instant.
void waitAtGate(int, char **, char **environment)
{
    constexpr char variable[] = "STRESS_GATE=", arrived[] = "gate\n";
    constexpr std::size_t length = sizeof variable - 1;
    for (; *environment; ++environment)
        if (std::strncmp(*environment, variable, length) == 0 && ::write(1, arrived, sizeof arrived - 1) > 0)
            ::close(static_cast<int>(::syscall(SYS_openat, AT_FDCWD, *environment + length, O_RDONLY)));
}
[[gnu::section(".preinit_array"), gnu::used]] void (*const atStart)(int, char **, char **) = waitAtGate;

SorvaneUSB &board()
{
    static SorvaneUSB usb;
    static bool opened = false;
    if (!opened) {
        stress::sharedTrace();
        opened = usb.InitPort(boardDevice) != 0;
    }
    return usb;
}

/// Whether it has every shared object, and a set that its locks work on.
bool attached()
{
    for (const SharedMemoryObject *handle :
         {&SharedOutOnCopy, &SharedOutOffCopy, &SharedcurrentEEPROM, &SharedserialRxBuffer})
        if (!handle->object || !MutexGuard(handle->mutex).holds())
            return false;
    return true;
}

std::string hex(const usbOutput &pattern)
{
    char text[11];
    const unsigned char *b = pattern.bits;
    std::snprintf(text, sizeof text, "%02X%02X%02X%02X%02X", b[0], b[1], b[2], b[3], b[4]);
    return text;
}

/// One operation of every kind that takes a lock. Those that set outputs set output 9 and keep output 0 lit.
int oneOperation(const std::string &name)
{
    usbOutput none = {}, nine = {{0, 2}}, both = {{1, 2}};
    R20EEPROM chip = E24LC64;
    unsigned char bytes[100] = {}, timestamp;
    unsigned short word;
    unsigned int received;
    if (name == "SetOutputBit")
        return board().SetOutputBit(usbOutput9, 1);
    if (name == "ModifyOutputs")
        return board().ModifyOutputs(&none, &nine);
    if (name == "SetOutputs")
        return board().SetOutputs(both.bits);
    if (name == "SetOnPeriodOutputs")
        return board().SetOnPeriodOutputs(both);
    if (name == "SetOffPeriodOutputs")
        return board().SetOffPeriodOutputs(both);
    if (name == "SetOnPeriodOutputBit")
        return board().SetOnPeriodOutputBit(usbOutputByte1, 1, 1);
    if (name == "SetOffPeriodOutputBit")
        return board().SetOffPeriodOutputBit(usbOutputByte1, 1, 1);
    if (name == "ConfigureEEPROM")
        return board().ConfigureEEPROM(&chip);
    if (name == "CheckEEPROM")
        return board().CheckEEPROM(&chip);
    if (name == "ReadEEPROM")
        return board().ReadEEPROM(8, bytes, sizeof bytes);
    if (name == "WriteEEPROM")
        return board().WriteEEPROM(8, bytes, sizeof bytes);
    if (name == "ReceiveByteWithTimestamp")
        return board().ReceiveByteWithTimestamp(usbSerialPort0, bytes, &timestamp, &received);
    if (name == "ReceiveByteWithTimestamp9BitData")
        return board().ReceiveByteWithTimestamp9BitData(usbSerialPort0, &word, &timestamp, &received);
    return -1;
}

/// What a process wants of its own outputs.
struct Wish {
    usbOutput on = {};
    usbOutput off = {};

    void set(usbOutput &pattern, int output, unsigned int state)
    {
        unsigned char &byte = pattern.bits[output / 8];
        const int mask = 1 << output % 8;
        byte = static_cast<unsigned char>(state ? byte | mask : byte & ~mask);
    }
};

int changeOne(Wish &wish, std::minstd_rand &random, int first, int count)
{
    const int output = first + static_cast<int>(random() % static_cast<unsigned int>(count));
    const unsigned int state = random() / 7 % 2;
    const unsigned int way = random() / 5 % 4;
    if (way != 3)
        wish.set(wish.on, output, state);
    if (way != 2)
        wish.set(wish.off, output, state);
    if (way == 0)
        return board().SetOutputBit(_usbOutputBitId(output), state);
    if (way == 2)
        return board().SetOnPeriodOutputBit(_usbOutputId(output / 8), output % 8, state);
    if (way == 3)
        return board().SetOffPeriodOutputBit(_usbOutputId(output / 8), output % 8, state);
    usbOutput none = {}, one = {};
    wish.set(one, output, 1);
    return state ? board().ModifyOutputs(&none, &one) : board().ModifyOutputs(&one, &none);
}

/// Changes its own outputs and answers with what they must be at the end.
std::string changeOwn(int first, int count, int rounds)
{
    std::minstd_rand random(static_cast<unsigned int>(first + 1));
    Wish wish;
    for (int round = 0; round < rounds; ++round)
        if (!changeOne(wish, random, first, count))
            return "failed";
    return hex(wish.on) + " " + hex(wish.off);
}

/// Takes items of the timestamped stream.
std::string drain(int items)
{
    std::string numbers;
    for (int k = 0; k < items; ++k) {
        unsigned char data = 0, timestamp = 0;
        unsigned int received = 0;
        if (!board().ReceiveByteWithTimestamp(usbSerialPort0, &data, &timestamp, &received) || received != 1)
            return "failed";
        numbers += std::to_string(data << 8 | timestamp) + " ";
    }
    return numbers;
}

[[noreturn]] void driveAsChild(const std::string &end, int output)
{
    for (int round = 0; round < 100; ++round)
        board().SetOutputBit(_usbOutputBitId(output), round % 2);
    if (end == "crash")
        std::raise(SIGKILL);
    if (end == "hurry")
        ::_exit(0);
    std::exit(0);  // with all destructors
}

/// A child drives on what it inherited while its parent drives, too.
std::string forkChild(const std::string &end, int output)
{
    board();
    const pid_t child = ::fork();
    if (child == 0)
        driveAsChild(end, output);
    int status = 0;
    int failures = 0;
    for (int round = 0; ::waitpid(child, &status, WNOHANG) == 0; ++round)
        failures += !board().SetOutputBit(_usbOutputBitId(output + 1), round % 2);
    failures += !board().SetOutputBit(_usbOutputBitId(output + 1), 1);
    return failures ? "failed" : WIFEXITED(status) ? "exited" : "killed";
}

[[noreturn]] void hammer(int first)
{
    Wish wish;
    std::minstd_rand random(static_cast<unsigned int>(::getpid()));
    for (;;) {
        changeOne(wish, random, first, 8);
        if (random() % 8 == 0)
            oneOperation("ReceiveByteWithTimestamp");
        if (random() % 8 == 0)
            oneOperation("ConfigureEEPROM");
    }
}

std::string obey(const std::string &line)
{
    std::istringstream words(line);
    std::string verb, name;
    int a = 0, b = 0, c = 0;
    words >> verb;
    if (verb == "attached")
        return attached() ? "yes" : "no";
    if (verb == "open")
        return std::to_string(board().GetLastError());
    if (verb == "do" && words >> name)
        return std::to_string(oneOperation(name));
    if (verb == "fork" && words >> name >> a)
        return forkChild(name, a);
    if (verb == "on" || verb == "off")
        return hex(verb == "on" ? onPattern(boardDevice) : offPattern(boardDevice));
    words >> a >> b >> c;
    if (verb == "bit")
        return std::to_string(board().SetOutputBit(_usbOutputBitId(a), static_cast<unsigned int>(b)));
    if (verb == "own")
        return changeOwn(a, b, c);
    if (verb == "drain")
        return drain(a);
    if (verb == "hammer")
        hammer(a);
    return "what?";
}

}  // namespace

int main()
{
    std::cout << "ready" << std::endl;
    std::string line;
    while (std::getline(std::cin, line) && line != "quit")
        std::cout << obey(line) << std::endl;
    return 0;
}
