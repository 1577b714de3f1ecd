// The memory of a caller, fetched page by page. A look into another process is dear beside an exchange, and what a
// driver call looks at lies close together: the record, the payload and the places of the answer.
#ifndef SORVANE_SIM_NODES_CALLER_PAGES_H
#define SORVANE_SIM_NODES_CALLER_PAGES_H

#include "sim/driver/caller_memory.h"

#include <array>
#include <deque>
#include <sys/types.h>

namespace sim
{

class CallerPages : public CallerMemory
{
public:
    explicit CallerPages(pid_t caller) : caller_(caller) {}

    bool read(std::uint64_t address, void *to, std::size_t size) override;
    bool write(std::uint64_t address, const void *from, std::size_t size) override;
    bool writeAll(std::span<const MemoryPiece> pieces) override;

    /// Time has passed, or something was written: the pages are not what they were.
    void forget() { pages_.clear(); }

private:
    static constexpr std::size_t pageSize = 4096;

    struct Page {
        explicit Page(std::uint64_t pageNumber) : number(pageNumber) {}

        std::uint64_t number;
        std::array<unsigned char, pageSize> bytes;
    };

    const Page *page(std::uint64_t number);

    pid_t caller_;
    std::deque<Page> pages_;
};

}  // namespace sim

#endif
