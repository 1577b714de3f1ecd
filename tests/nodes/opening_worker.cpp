// A program that opens boards, told what to do line by line (tests/processes/peer.h):
//
//   open N, init, find NUMBER   the three ways to open; load: the firmware alone
//   signals                     a signal that does not kill, every millisecond of what comes next
//   stop K, fork K              before its K-th exchange it says "stopped" and waits for ever; leaves a child behind
//   say K                       before its K-th exchange it says "asking"
//
// What opens answers with result, code and how often its exchanges so far began a download, ended one and configured
// the EEPROM: "1 0 1 1 2".
#include "tests/support/driver_call.h"

#include <csignal>
#include <cstdarg>
#include <iostream>
#include <sorvaneusb.h>
#include <sstream>
#include <string>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace
{

int exchanges = 0, stopAt = 0, forkAt = 0, sayAt = 0;
int asked[256] = {};

void beforeExchange(unsigned char request)
{
    ++asked[request];
    ++exchanges;
    if (exchanges == sayAt)
        std::cout << "asking" << std::endl;
    if (exchanges == stopAt) {
        std::cout << "stopped" << std::endl;
        for (;;)
            ::pause();
    }
    if (exchanges == forkAt && ::fork() == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (;;)
            ::pause();
    }
}

void sendSignalsEvery(int microseconds)
{
    struct sigaction nothing = {};
    nothing.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &nothing, nullptr);
    const itimerval often = {{0, microseconds}, {0, microseconds}};
    ::setitimer(ITIMER_REAL, &often, nullptr);
}

std::string obey(SorvaneUSB &board, const std::string &line)
{
    std::istringstream words(line);
    std::string verb;
    int number = 0, result = 0;
    words >> verb >> number;
    if (verb == "open")
        result = board.InitPort(number);
    else if (verb == "init")
        result = board.init(0);
    else if (verb == "find")
        result = board.InitUSBBoard(static_cast<unsigned char>(number));
    else if (verb == "load")
        result = board.Download8051Software();
    else
        return "what?";
    sendSignalsEvery(0);
    std::ostringstream answer;
    answer << result << " " << board.GetLastError() << " " << asked[72] << " " << asked[73] << " " << asked[3];
    return answer.str();
}

}  // namespace

extern "C" int ioctl(int descriptor, unsigned long number, ...) noexcept
{
    va_list arguments;
    va_start(arguments, number);
    void *call = va_arg(arguments, void *);
    va_end(arguments);
    beforeExchange(number == packetNumber ? static_cast<Packet *>(call)->data[0]
                                          : static_cast<Record *>(call)->request);
    return static_cast<int>(::syscall(SYS_ioctl, descriptor, number, call));
}

int main()
{
    std::cout << "ready" << std::endl;
    SorvaneUSB board;
    std::string line;
    while (std::getline(std::cin, line) && line != "quit") {
        std::istringstream words(line);
        std::string verb;
        words >> verb;
        if (verb == "signals")
            sendSignalsEvery(1000);
        else if (verb == "stop")
            words >> stopAt;
        else if (verb == "fork")
            words >> forkAt;
        else if (verb == "say")
            words >> sayAt;
        else
            std::cout << obey(board, line) << std::endl;
    }
}
