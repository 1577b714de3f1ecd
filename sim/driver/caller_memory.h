// The memory of the program that calls the driver.
#ifndef SORVANE_SIM_DRIVER_CALLER_MEMORY_H
#define SORVANE_SIM_DRIVER_CALLER_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <sys/types.h>

namespace sim
{

/// Which of the two layouts a caller's records have.
enum class CallerWidth { Bits32, Bits64 };

constexpr CallerWidth ownWidth = sizeof(void *) == 4 ? CallerWidth::Bits32 : CallerWidth::Bits64;

/// A place in the caller's memory and what belongs there.
struct MemoryPiece {
    std::uint64_t address;
    unsigned char *data;
    std::size_t size;
};

/// A failed read or write may have moved a part.
class CallerMemory
{
public:
    virtual ~CallerMemory() = default;

    virtual bool read(std::uint64_t address, void *to, std::size_t size) = 0;
    virtual bool write(std::uint64_t address, const void *from, std::size_t size) = 0;

    /// Several places at once.
    virtual bool readAll(std::span<const MemoryPiece> pieces);
    virtual bool writeAll(std::span<const MemoryPiece> pieces);

    /// Whether a write is going to succeed; writes back what stands there. Nothing is asked about 0 bytes.
    bool writable(std::uint64_t address, std::size_t size);
};

/// The memory of a process, through the kernel, which refuses a wrong address and keeps pages read-only. The own
/// process is one like any other.
class ProcessMemory : public CallerMemory
{
public:
    explicit ProcessMemory(pid_t process) : process_(process) {}

    bool read(std::uint64_t address, void *to, std::size_t size) override;
    bool write(std::uint64_t address, const void *from, std::size_t size) override;
    bool readAll(std::span<const MemoryPiece> pieces) override;
    bool writeAll(std::span<const MemoryPiece> pieces) override;

private:
    pid_t process_;
};

}  // namespace sim

#endif
