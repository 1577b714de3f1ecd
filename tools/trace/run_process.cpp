#include "sim/system/signals.h"
#include "tools/trace/run.h"
#include "tools/trace/tracer.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace trace
{

namespace
{

std::string firstWord(const std::string &file)
{
    std::ifstream stream(file);
    std::string word;
    stream >> word;
    return word;
}

std::string folderOf(int process)
{
    return "/proc/" + std::to_string(process);
}

std::string fieldOf(int process, const std::string &field)
{
    std::ifstream status(folderOf(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(field + ":\t"))
            return line.substr(field.size() + 2);
    }
    return "";
}

// Which of the things that can forbid it does.
Obstacle whyNot(int process, int error)
{
    const std::string what = "process " + std::to_string(process) + " cannot be traced: ";
    if (error == ESRCH || fieldOf(process, "Name").empty())
        return {"there is no process " + std::to_string(process), ""};
    if (const std::string tracer = fieldOf(process, "TracerPid"); tracer != "0")
        return {what + "process " + tracer + " traces it already", "a process has one tracer; end the other"};
    const std::string yama = firstWord("/proc/sys/kernel/yama/ptrace_scope");
    if (yama == "3")
        return {what + "kernel.yama.ptrace_scope is 3, which forbids it to everybody until the next start",
                "set kernel.yama.ptrace_scope to another value in /etc/sysctl.d and restart the machine"};
    const std::string user = fieldOf(process, "Uid");
    if (user.substr(0, user.find('\t')) != std::to_string(::getuid()))
        return {what + "it belongs to another user", "run sorvane as root"};
    if (yama == "1" || yama == "2")
        return {what + "kernel.yama.ptrace_scope is " + yama + ", which allows it to root alone",
                "run sorvane as root, or: sysctl kernel.yama.ptrace_scope=0"};
    return {what + std::strerror(error), "it may have gained rights as it started: run sorvane as root; a container "
                                         "needs --cap-add SYS_PTRACE"};
}

// Threads that start meanwhile are followed by themselves once their parents are, so that it comes to an end.
void seizeAll(Tracer &tracer, int process)
{
    int error = ESRCH;
    for (bool found = true; found;) {
        found = false;
        std::error_code gone;
        for (const auto &entry : std::filesystem::directory_iterator(folderOf(process) + "/task", gone)) {
            const pid_t thread = std::stoi(entry.path().filename());
            if (tracer.follows(thread))
                continue;
            if (tracer.seize(thread)) {
                tracer.interrupt(thread);
                found = true;
            } else {
                error = errno;
            }
        }
    }
    if (tracer.following() == 0)
        throw whyNot(process, error);
}

}  // namespace

void traceProcess(int process, const OnExchange &exchange, const OnNote &note)
{
    if (process == ::getpid())
        throw Obstacle{"a process cannot trace itself", ""};
    const sim::BlockedSignals blocked;
    Tracer *following = nullptr;
    Tracer::Listener listener;
    listener.exchange = exchange;
    listener.executed = [](pid_t) {};
    listener.signalled = [&following](int signal) {
        if (signal == SIGINT || signal == SIGTERM || signal == SIGHUP || signal == SIGQUIT)
            following->letGo();
    };
    Tracer tracer(Stops::EveryCall, std::move(listener));
    following = &tracer;
    seizeAll(tracer, process);
    note("attached to process " + std::to_string(process) + " (" + fieldOf(process, "Name") + "), threads: " +
         std::to_string(tracer.following()) + "; every system call of it stops for the trace. Ctrl-C detaches");
    tracer.follow(process);
    note(tracer.programStatus() ? "the process has ended" : "detached; the process runs on");
}

}  // namespace trace
