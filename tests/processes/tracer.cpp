#include "tests/processes/tracer.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <linux/audit.h>
#include <stdexcept>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tests
{

namespace
{

struct Name {
    unsigned int number;
    const char *name;
};
constexpr Name wideCalls[] = {{0, "read"},   {1, "write"},   {3, "close"},   {16, "ioctl"},   {29, "shmget"},
                              {30, "shmat"}, {31, "shmctl"}, {64, "semget"}, {65, "semop"},   {66, "semctl"},
                              {67, "shmdt"}, {220, "semop"}, {73, "flock"},  {257, "openat"}, {231, "exit"}};
constexpr Name narrowCalls[] = {{3, "read"},     {4, "write"},    {6, "close"},    {54, "ioctl"},   {295, "openat"},
                                {393, "semget"}, {394, "semctl"}, {395, "shmget"}, {396, "shmctl"}, {397, "shmat"},
                                {398, "shmdt"},  {420, "semop"},  {143, "flock"},  {252, "exit"}};
constexpr unsigned int narrowIpc = 117;
constexpr Name narrowIpcCalls[] = {{1, "semop"},  {2, "semget"}, {3, "semctl"},  {4, "semop"},
                                   {21, "shmat"}, {22, "shmdt"}, {23, "shmget"}, {24, "shmctl"}};

template <std::size_t Count>
std::string nameIn(const Name (&names)[Count], unsigned long long number)
{
    for (const Name &entry : names)
        if (entry.number == number)
            return entry.name;
    return "call " + std::to_string(number);
}

constexpr auto requestOf(int request)
{
    return static_cast<__ptrace_request>(request);
}

}  // namespace

Traced::Traced(const std::string &program) : peer(program, Peer::Start::Held)
{
    const auto options = reinterpret_cast<void *>(PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL);
    if (::ptrace(PTRACE_SEIZE, peer.id(), nullptr, options) != 0)
        throw std::runtime_error("this machine does not let a process be traced");
    peer.release();
    int status;
    if (::waitpid(peer.id(), &status, 0) != peer.id() || status >> 8 != (SIGTRAP | PTRACE_EVENT_EXEC << 8))
        throw std::runtime_error("the program did not start under the tracer");
}

bool Traced::possible()
{
    Peer victim("/bin/true", Peer::Start::Held);
    return ::ptrace(PTRACE_SEIZE, victim.id(), nullptr, nullptr) == 0;
}

void Traced::resume(int request)
{
    int signal = 0;
    for (;;) {
        int status;
        if (::ptrace(requestOf(request), peer.id(), nullptr, reinterpret_cast<void *>(static_cast<long>(signal))) !=
                0 ||
            ::waitpid(peer.id(), &status, 0) != peer.id())
            throw std::runtime_error("the traced process was lost");
        alive_ = WIFSTOPPED(status);
        if (!alive_ || WSTOPSIG(status) == (SIGTRAP | 0x80) || WSTOPSIG(status) == SIGTRAP)
            break;
        signal = status >> 16 ? 0 : WSTOPSIG(status);  // one of the process's own: it gets it
    }
    if (alive_)
        look();
}

void Traced::look()
{
    __ptrace_syscall_info info = {};
    const auto size = reinterpret_cast<void *>(sizeof info);
    if (::ptrace(requestOf(PTRACE_GET_SYSCALL_INFO), peer.id(), size, &info) <= 0)
        throw std::runtime_error("the kernel does not tell where a traced process stands");
    compat_ = info.arch == AUDIT_ARCH_I386;
    instruction_ = info.instruction_pointer;
    atCall_ = info.op == PTRACE_SYSCALL_INFO_ENTRY || info.op == PTRACE_SYSCALL_INFO_EXIT;
    before_ = info.op == PTRACE_SYSCALL_INFO_ENTRY;
    if (!before_)
        return;  // afterwards number and arguments are those of the call before
    number_ = info.entry.nr;
    for (int k = 0; k < 6; ++k)
        arguments_[k] = info.entry.args[k];
}

std::string Traced::where() const
{
    std::string name = compat_ && number_ == narrowIpc ? nameIn(narrowIpcCalls, arguments_[0] & 0xFFFF)
                       : compat_                       ? nameIn(narrowCalls, number_)
                                                       : nameIn(wideCalls, number_);
    return name + (before_ ? " before" : " after");
}

bool Traced::isInTemporary(unsigned long long path) const
{
    const std::string memory = "/proc/" + std::to_string(peer.id()) + "/mem";
    std::ifstream file(memory, std::ios::binary);
    char begin[5] = {};
    file.seekg(static_cast<std::streamoff>(path)).read(begin, sizeof begin);
    return std::string_view(begin, sizeof begin) == "/tmp/";
}

bool Traced::isStart(const Part &wanted) const
{
    if (wanted.loading())
        return where() == "openat before" && isInTemporary(arguments_[1]);
    return where() == "read after" && arguments_[0] == 0;
}

bool Traced::isOver() const
{
    const std::string here = where();
    return here == "exit before" || (here == "write before" && arguments_[0] == 1);
}

void Traced::beginWith(const Part &wanted)
{
    part_ = wanted;
    if (!part_.loading())
        peer.tell(part_.line);
    do
        resume(PTRACE_SYSCALL);
    while (alive_ && !isStart(part_));
    if (!alive_)
        throw std::runtime_error("the process ended before \"" + part_.line + "\"");
}

bool Traced::next()
{
    resume(PTRACE_SYSCALL);
    return alive_ && !isOver();
}

bool Traced::stepInstruction()
{
    errno = 0;
    const long code = ::ptrace(PTRACE_PEEKTEXT, peer.id(), reinterpret_cast<void *>(instruction_), nullptr) & 0xFFFF;
    if (errno != 0 || code == 0x050F || code == 0x80CD || code == 0x340F)  // syscall, int 0x80, sysenter
        return false;
    resume(PTRACE_SINGLESTEP);
    return alive_;
}

bool Traced::stepInstructions(std::size_t count)
{
    int status = 0;
    for (; count > 0; --count)
        if (::ptrace(PTRACE_SINGLESTEP, peer.id(), nullptr, nullptr) != 0 ||
            ::waitpid(peer.id(), &status, 0) != peer.id() || !WIFSTOPPED(status))
            return false;
    return true;
}

void Traced::release()
{
    if (alive_)
        ::ptrace(PTRACE_DETACH, peer.id(), nullptr, nullptr);
}

}  // namespace tests
