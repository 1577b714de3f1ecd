#include "sim/system/descriptors.h"

#include <algorithm>
#include <fcntl.h>
#include <vector>

namespace sim
{

void closeAllBut(std::initializer_list<int> kept)
{
    std::vector<int> sorted(kept);
    std::sort(sorted.begin(), sorted.end());
    unsigned int first = 3;
    for (const int fd : sorted) {
        const auto number = static_cast<unsigned int>(fd);
        if (fd < 3)
            continue;
        if (number > first)
            ::close_range(first, number - 1, 0);
        first = number + 1;
    }
    ::close_range(first, ~0U, 0);
}

void redirectToNull(int standardDescriptor)
{
    const OwnedFd nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
    if (nothing && nothing.get() != standardDescriptor)
        ::dup2(nothing.get(), standardDescriptor);
}

}  // namespace sim
