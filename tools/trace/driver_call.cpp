#include "tools/trace/driver_call.h"

#include "tools/trace/driver_protocol.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace trace
{

namespace
{

using driver_protocol::packetRequest;
using driver_protocol::recordRequest;

// `ioctl` in the tables of system calls. x32, 32-bit addresses in a 64-bit kernel's own calls, counts from a bit on.
constexpr std::uint32_t narrowIoctl = 54;
constexpr std::uint32_t wideIoctl = 16;
constexpr std::uint32_t x32Ioctl = 0x40000000 + 514;

constexpr std::size_t requestPlace = 1;  // among the arguments

std::optional<DriverCall> callFrom(std::uint32_t architecture, std::uint64_t number, const std::uint64_t *arguments)
{
    const bool narrow = architecture == AUDIT_ARCH_I386;
    const bool isIoctl = narrow ? number == narrowIoctl : number == wideIoctl || number == x32Ioctl;
    const auto request = static_cast<std::uint32_t>(arguments[requestPlace]);
    if (!isIoctl || (request != packetRequest && request != recordRequest))
        return std::nullopt;
    const Width width = narrow || number == x32Ioctl ? Width::Bits32 : Width::Bits64;
    return DriverCall{width, request == packetRequest, static_cast<int>(arguments[0]), arguments[2]};
}

constexpr sock_filter load(std::size_t place)
{
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(place));
}

// How many instructions to pass over where the word that was loaded is this value, and where it is not.
constexpr sock_filter jump(std::uint32_t value, unsigned char equal, unsigned char other)
{
    return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, equal, other);
}

constexpr sock_filter end(std::uint32_t verdict)
{
    return BPF_STMT(BPF_RET | BPF_K, verdict);
}

// Numbers mean different calls on different architectures. Of the request number the kernel looks at 32 bits, too.
const std::array<sock_filter, 13> filter = {{
    load(offsetof(seccomp_data, arch)),
    jump(AUDIT_ARCH_X86_64, 3, 0),
    jump(AUDIT_ARCH_I386, 0, 8),
    load(offsetof(seccomp_data, nr)),
    jump(narrowIoctl, 3, 6),
    load(offsetof(seccomp_data, nr)),
    jump(wideIoctl, 1, 0),
    jump(x32Ioctl, 0, 3),
    load(offsetof(seccomp_data, args) + requestPlace * sizeof(std::uint64_t)),
    jump(packetRequest, 2, 0),
    jump(recordRequest, 1, 0),
    end(SECCOMP_RET_ALLOW),
    end(SECCOMP_RET_TRACE),
}};

}  // namespace

std::optional<Stop> stopOf(pid_t thread)
{
    __ptrace_syscall_info info = {};
    const auto size = reinterpret_cast<void *>(sizeof info);
    if (::ptrace(static_cast<__ptrace_request>(PTRACE_GET_SYSCALL_INFO), thread, size, &info) <= 0)
        return std::nullopt;
    Stop stop;
    stop.atExit = info.op == PTRACE_SYSCALL_INFO_EXIT;
    if (stop.atExit)
        stop.result = info.exit.rval;
    else if (info.op == PTRACE_SYSCALL_INFO_ENTRY)
        stop.call = callFrom(info.arch, info.entry.nr, info.entry.args);
    else if (info.op == PTRACE_SYSCALL_INFO_SECCOMP)
        stop.call = callFrom(info.arch, info.seccomp.nr, info.seccomp.args);
    return stop;
}

bool layFilter()
{
    sock_fprog program = {static_cast<unsigned short>(filter.size()), const_cast<sock_filter *>(filter.data())};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    // Without the flag older kernels would slow the whole program down, for the sake of filters that keep secrets.
    return ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_SPEC_ALLOW, &program) == 0 ||
           ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) == 0;
}

}  // namespace trace
