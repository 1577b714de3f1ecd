// A call of the boards' driver, as the kernel tells of it at the stop of a traced thread.
//
// A filter in the traced program makes nothing stop but `ioctl` with one of the driver's two request numbers. Such a
// filter needs a tracer: without one the kernel refuses the calls that it picks out.
#ifndef SORVANE_TOOLS_TRACE_DRIVER_CALL_H
#define SORVANE_TOOLS_TRACE_DRIVER_CALL_H

#include <cstdint>
#include <optional>
#include <sys/types.h>

namespace trace
{

/// How a record is laid out in the caller's memory. It is a matter of the call, not of the program: a 64-bit program
/// may make a 32-bit call.
enum class Width { Bits32, Bits64 };

struct DriverCall {
    Width width;
    bool packet;  ///< the argument leads to an R20 packet; otherwise to a record
    int descriptor;
    std::uint64_t argument;
};

/// Where a stopped thread stands, without what is of no interest here.
struct Stop {
    bool atExit = false;             ///< behind a system call, whose result this is
    std::int64_t result = 0;         ///< negative: the error number
    std::optional<DriverCall> call;  ///< in front of a call of the driver
};

/// Of a thread in a stop of a system call or of the filter; nothing where it was killed meanwhile.
std::optional<Stop> stopOf(pid_t thread);

/// Lays the filter on this process and all that it starts, which can then gain no more rights by executing a program.
/// False when the kernel does not take it.
bool layFilter();

}  // namespace trace

#endif
