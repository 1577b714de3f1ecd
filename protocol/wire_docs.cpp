// Prints docs/wire.md.
#include "protocol/document.h"

#include <cstdio>

int main()
{
    const std::string text = protocol::wireDocument();
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0 ? 0 : 1;
}
