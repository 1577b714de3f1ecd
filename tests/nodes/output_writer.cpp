// Switches one output of a board so many times and leaves it on:
//   output_writer DEVICE OUTPUT TIMES
// After each change it reads the patterns' way back from the board: a change that is lost is an error.
#include <sorvaneusb.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    if (argc != 4)
        return 2;
    SorvaneUSB board;
    if (!board.InitPort(std::atoi(argv[1]))) {
        std::fprintf(stderr, "board %s cannot be opened: error %d\n", argv[1], static_cast<int>(board.GetLastError()));
        return 1;
    }
    const int times = std::atoi(argv[3]);
    for (int n = 1; n <= 2 * times; ++n) {
        if (!board.SetOutputBit(static_cast<_usbOutputBitId>(std::atoi(argv[2])), n % 2 == 0)) {
            std::fprintf(stderr, "change %d failed: error %d\n", n, static_cast<int>(board.GetLastError()));
            return 1;
        }
    }
    return 0;
}
