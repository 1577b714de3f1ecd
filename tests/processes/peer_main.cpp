// The program behind peer.h: it drives boards of its own driver. A line is a verb and its arguments, with the device in
// front of it where it is not the shared board's: "3 bit 12 1".
#include "board/rbase_shared_implementation/shared_board_state.h"
#include "tests/processes/faulty_calls.h"
#include "tests/processes/peer_driver.h"
#include "tests/processes/shared_board.h"

#include <array>
#include <cctype>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <random>
#include <sorvaneusb.h>
#include <sstream>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tests
{

namespace
{

/// Before the library is set up, and before the C library is: whoever is to wait at a gate says so and waits until it
/// is closed for all of them at the same instant. All output of a life with faults is looked at.
void beforeEverything(int, char **, char **environment)
{
    char token;
    for (; *environment; ++environment) {
        if (std::strncmp(*environment, "SORVANE_FAULTS=", 15) == 0)
            ::dup2(1, 2);
        if (std::strcmp(*environment, "PEER_GATE=3") == 0 && ::write(1, "gate\n", 5) == 5)
            while (::read(3, &token, 1) > 0) {
            }
    }
}
[[gnu::section(".preinit_array"), gnu::used]] void (*const atStart)(int, char **, char **) = beforeEverything;

/// A static object of the program: the library must be set up before it.
struct StaticObject {
    StaticObject() : arenaWasThere(SharedOutOnCopy.object != nullptr) {}
    bool arenaWasThere;
} staticObject;

int device = boardDevice;
std::array<bool, deviceCount> tried = {};

SorvaneUSB &anyBoard()
{
    static std::array<SorvaneUSB, deviceCount> boards;
    return boards[static_cast<std::size_t>(device)];
}

int open()
{
    tried[static_cast<std::size_t>(device)] = true;
    sharedBoard();  // its node
    return anyBoard().InitPort(device);
}

/// The board, opened.
SorvaneUSB &board()
{
    if (!tried[static_cast<std::size_t>(device)])
        open();
    return anyBoard();
}

int setBit(int output, unsigned int state)
{
    return board().SetOutputBit(_usbOutputBitId(output), state);
}

/// One operation of every kind that takes a lock, and some that take none. Those that set outputs set output 9 and keep
/// output 0 lit.
usbOutput none = {}, nine = {{0, 2}}, both = {{1, 2}};
unsigned char bytes[1024], timestamp;
unsigned short word;
unsigned int received;
unsigned long length;
R20EEPROM chip;
usbInput inputs;
const struct {
    const char *name;
    int (*run)(SorvaneUSB &usb);
} operations[] = {
    {"SetOutputBit", [](SorvaneUSB &usb) { return usb.SetOutputBit(usbOutput9, 1); }},
    {"ModifyOutputs", [](SorvaneUSB &usb) { return usb.ModifyOutputs(&none, &nine); }},
    {"SetOutputs", [](SorvaneUSB &usb) { return usb.SetOutputs(both.bits); }},
    {"SetOnPeriodOutputs", [](SorvaneUSB &usb) { return usb.SetOnPeriodOutputs(both); }},
    {"SetOffPeriodOutputs", [](SorvaneUSB &usb) { return usb.SetOffPeriodOutputs(both); }},
    {"SetOnPeriodOutputBit", [](SorvaneUSB &usb) { return usb.SetOnPeriodOutputBit(usbOutputByte1, 1, 1); }},
    {"SetOffPeriodOutputBit", [](SorvaneUSB &usb) { return usb.SetOffPeriodOutputBit(usbOutputByte1, 1, 1); }},
    {"ConfigureEEPROM", [](SorvaneUSB &usb) { return usb.ConfigureEEPROM(&E24LC64); }},
    {"CheckEEPROM", [](SorvaneUSB &usb) { return usb.CheckEEPROM(&chip); }},
    {"ReadEEPROM", [](SorvaneUSB &usb) { return usb.ReadEEPROM(8, bytes, 100); }},
    {"WriteEEPROM", [](SorvaneUSB &usb) { return usb.WriteEEPROM(8, bytes, 100); }},
    {"ReceiveByteWithTimestamp",
     [](SorvaneUSB &usb) { return usb.ReceiveByteWithTimestamp(usbSerialPort0, bytes, &timestamp, &received); }},
    {"ReceiveByteWithTimestamp9BitData",
     [](SorvaneUSB &usb) {
         return usb.ReceiveByteWithTimestamp9BitData(usbSerialPort0, &word, &timestamp, &received);
     }},
    {"Receive", [](SorvaneUSB &usb) { return usb.Receive(usbSerialPort0, bytes, &length, 600); }},
    {"Send", [](SorvaneUSB &usb) { return usb.Send(usbSerialPort1, bytes, 300); }},
    {"SRAM", [](SorvaneUSB &usb) { return usb.WriteSRAM(20000, bytes, 300) ? usb.ReadSRAM(20000, bytes, 300) : 0; }},
    {"GetInputs", [](SorvaneUSB &usb) { return usb.GetInputs(&inputs); }},
    {"open", [](SorvaneUSB &) { return open(); }},
};

int run(const std::string &name)
{
    for (const auto &operation : operations)
        if (operation.name == name)
            return operation.run(name == "open" ? anyBoard() : board());
    return -1;
}

/// Result, error and what the exchanges showed: "= 1 0 0002 ~ exchanges 1 held 1 registrations 1".
std::string perform(std::istream &words)
{
    std::string name;
    words >> name;
    takeObservation();
    const int result = run(name);
    std::ostringstream answer;
    answer << "= " << name << " " << result << " " << board().GetLastError() << " ";
    answer << (result ? lastPayload() : "") << " ~ " << takeObservation();
    board().ClearErrors();
    return answer.str();
}

/// Whether it has every shared object, and a set that its locks work on.
std::string attached(std::istream &)
{
    for (const SharedMemoryObject *handle :
         {&SharedOutOnCopy, &SharedOutOffCopy, &SharedcurrentEEPROM, &SharedserialRxBuffer})
        if (!handle->object || !MutexGuard(handle->mutex).holds())
            return "no";
    return "yes";
}

template <bool (Mutex::*change)()>
std::string onMutex(std::istream &words)
{
    int number = 0;
    words >> number;
    Mutex *mutex = Mutex::GetLocalMutex(MutexID("R20Mutex", number, 1));
    const bool done = (mutex->*change)();
    Mutex::ReleaseLocalMutex(mutex);
    return done ? "ok" : "no";
}

template <usbOutput &pattern(int)>
std::string patternOf(std::istream &)
{
    return hex(pattern(device).bits, sizeof(usbOutput));
}

std::string changeBit(std::istream &words)
{
    int output = 0;
    unsigned int state = 0;
    words >> output >> state;
    return std::to_string(setBit(output, state));
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
        return setBit(output, state);
    if (way == 2)
        return board().SetOnPeriodOutputBit(_usbOutputId(output / 8), output % 8, state);
    if (way == 3)
        return board().SetOffPeriodOutputBit(_usbOutputId(output / 8), output % 8, state);
    usbOutput one = {};
    wish.set(one, output, 1);
    return state ? board().ModifyOutputs(&none, &one) : board().ModifyOutputs(&one, &none);
}

/// Changes its own outputs and answers with what they must be at the end.
std::string changeOwn(std::istream &words)
{
    int first = 0, count = 0, rounds = 0;
    words >> first >> count >> rounds;
    std::minstd_rand random(static_cast<unsigned int>(first + 1));
    Wish wish;
    for (; rounds > 0; --rounds)
        if (!changeOne(wish, random, first, count))
            return "failed";
    return hex(wish.on.bits, 5) + " " + hex(wish.off.bits, 5);
}

/// Takes items of the timestamped stream.
std::string drain(std::istream &words)
{
    std::string numbers;
    int items = 0;
    for (words >> items; items > 0; --items) {
        if (!run("ReceiveByteWithTimestamp") || received != 1)
            return "failed";
        numbers += std::to_string(bytes[0] << 8 | timestamp) + " ";
    }
    return numbers;
}

/// Changes outputs for ever, and more.
std::string hammer(std::istream &words)
{
    int first = 0;
    words >> first;
    Wish wish;
    std::minstd_rand random(static_cast<unsigned int>(::getpid()));
    for (;;) {
        changeOne(wish, random, first, 8);
        if (random() % 8 == 0)
            run("ReceiveByteWithTimestamp");
        if (random() % 8 == 0)
            run("ConfigureEEPROM");
    }
}

[[noreturn]] void driveAsChild(const std::string &end, int output)
{
    for (unsigned int round = 0; round < 100; ++round)
        setBit(output, round % 2);
    if (end == "crash")
        std::raise(SIGKILL);
    if (end == "hurry")
        ::_exit(0);
    std::exit(0);  // with all destructors
}

/// A child drives on what it inherited while its parent drives, too. One that is "unseen" is made by the bare system
/// call, so that nobody is told of the fork.
std::string forkChild(std::istream &words)
{
    std::string end;
    int output = 0;
    words >> end >> output;
    board();
    const pid_t child = end == "unseen" ? static_cast<pid_t>(::syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0)) : ::fork();
    if (child == 0)
        driveAsChild(end, output);
    int status = 0;
    int failures = 0;
    for (unsigned int round = 0; ::waitpid(child, &status, WNOHANG) == 0; ++round)
        failures += !setBit(output + 1, round % 2);
    failures += !setBit(output + 1, 1);
    return failures ? "failed" : WIFEXITED(status) ? "exited" : "killed";
}

std::string descriptors(std::istream &)
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return "descriptors " + std::to_string(std::distance(begin(all), end(all)));
}

const struct {
    const char *name;
    std::string (*obey)(std::istream &words);
} verbs[] = {
    {"static", [](std::istream &) -> std::string { return staticObject.arenaWasThere ? "yes" : "no"; }},
    {"attached", attached},
    {"lock", onMutex<&Mutex::Lock>},
    {"unlock", onMutex<&Mutex::UnLock>},
    {"on", patternOf<onPattern>},
    {"off", patternOf<offPattern>},
    {"configured", [](std::istream &) { return std::to_string(eepromEntry(device).configured); }},
    {"close", [](std::istream &) -> std::string { return anyBoard().close() ? "closed" : "failed"; }},
    {"do", perform},
    {"bit", changeBit},
    {"own", changeOwn},
    {"drain", drain},
    {"hammer", hammer},
    {"fork", forkChild},
    {"descriptors", descriptors},
    {"list", [](std::istream &) { return std::to_string(::execl("/bin/ls", "ls", "/proc/self/fd", nullptr)); }},
};

std::string obey(const std::string &line)
{
    std::istringstream words(line);
    std::string name;
    device = boardDevice;
    if (std::isdigit(line[0]))
        words >> device;
    words >> name;
    for (const auto &verb : verbs)
        if (verb.name == name)
            return verb.obey(words);
    return "what?";
}

}  // namespace

}  // namespace tests

int main()
{
    std::cout << "ready" << std::endl;
    std::string line;
    while (std::getline(std::cin, line) && line != "quit")
        std::cout << tests::obey(line) << std::endl;
    return 0;
}
