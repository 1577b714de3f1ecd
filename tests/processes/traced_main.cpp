#include <cstdio>
#include <gtest/gtest.h>

#include "tests/processes/tracer.h"

int main(int argc, char **argv)
{
    if (!tests::Traced::possible()) {
        std::puts("SKIPPED: no process can be traced here (an emulator runs this program, or the machine forbids it)");
        return 77;
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
