// The program behind tests/support/peer.h. It drives boards that are not there: what it asks of them fails, but the
// state that all processes share changes as it would with a board.
#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "board/r35_implementation.h"
#include "board/rbase_shared_implementation/shared_board_state.h"

namespace
{

/// A static object of the program: the library must be set up before it.
struct StaticObject {
    StaticObject() : arenaWasThere(SharedOutOnCopy.object != nullptr) {}
    bool arenaWasThere;
} staticObject;

R35_Implementation &board(int deviceNo)
{
    static std::map<int, R35_Implementation> boards;
    return boards.try_emplace(deviceNo, nullptr, -1, 2, deviceNo).first->second;
}

std::string hex(const unsigned char *bytes, unsigned int count)
{
    std::string text;
    for (unsigned int k = 0; k < count; ++k) {
        char byte[4];
        std::snprintf(byte, sizeof byte, "%02X", bytes[k]);
        text += byte;
    }
    return text;
}

std::string mutexCommand(const std::string &verb, int number)
{
    Mutex *mutex = Mutex::GetLocalMutex(MutexID("R20Mutex", number, 1));
    const bool done = verb == "lock" ? mutex->Lock() : mutex->UnLock();
    Mutex::ReleaseLocalMutex(mutex);
    return done ? "ok" : "no";
}

std::string forkCommand()
{
    const pid_t child = ::fork();
    if (child == 0) {
        board(0).SetOutputBit(usbOutput7, 1);
        std::exit(0);  // its own way out, with all destructors
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? "ok" : "no";
}

std::string obey(const std::string &line)
{
    std::istringstream words(line);
    std::string verb;
    int a = 0, b = 0, c = 0;
    words >> verb >> a >> b >> c;
    if (verb == "lock" || verb == "unlock")
        return mutexCommand(verb, a);
    if (verb == "output")
        return std::to_string(board(a).SetOutputBit(_usbOutputBitId(b), static_cast<unsigned int>(c)));
    if (verb == "on")
        return hex(onPattern(a).bits, 5);
    if (verb == "configure") {
        R20EEPROM chip = E24LC64;
        return std::to_string(board(a).ConfigureEEPROM(&chip));
    }
    if (verb == "configured")
        return std::to_string(board(0).EEPROMConfigured(a));
    if (verb == "attached")
        return SharedOutOnCopy.object && SharedserialRxBuffer.mutex ? "yes" : "no";
    if (verb == "static")
        return staticObject.arenaWasThere ? "yes" : "no";
    if (verb == "fork")
        return forkCommand();
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
