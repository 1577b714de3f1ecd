// The memory of a traced program.
#ifndef SORVANE_TOOLS_TRACE_PROGRAM_MEMORY_H
#define SORVANE_TOOLS_TRACE_PROGRAM_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <sys/types.h>

namespace trace
{

/// Reads as much as asked or fails. A 32-bit tracer reaches every address of a 64-bit program, too.
bool readMemory(pid_t thread, std::uint64_t address, void *to, std::size_t size);

}  // namespace trace

#endif
