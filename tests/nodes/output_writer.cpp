// Switches one output of a board off and on, again and again, and leaves it on:
//   output_writer DEVICE OUTPUT TIMES|SECONDSs
// It ends at the first error; otherwise it prints the number of its changes.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <sorvaneusb.h>
#include <string>

namespace
{

int fail(const char *what, int error)
{
    std::fprintf(stderr, "%s: error %d\n", what, error);
    return 1;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc != 4)
        return 2;
    const std::string amount = argv[3];
    const bool timed = amount.back() == 's';
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(timed ? std::stoi(amount) : 0);
    const auto goesOn = [&](long done) {
        return timed ? std::chrono::steady_clock::now() < end : done < 2 * std::stol(amount);
    };
    SorvaneUSB board;
    if (!board.InitPort(std::atoi(argv[1])))
        return fail("opening", board.GetLastError());
    const auto output = static_cast<_usbOutputBitId>(std::atoi(argv[2]));
    long done = 0;
    for (; goesOn(done); done += 2) {
        if (!board.SetOutputBit(output, 0) || !board.SetOutputBit(output, 1))
            return fail("switching", board.GetLastError());
    }
    std::printf("%ld\n", done);
    return 0;
}
