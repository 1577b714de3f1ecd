// A cabinet file, whatever stands in it: it is refused with a line for each mistake, or its boards can be plugged and
// each of its parts is found by its name and its number.
#include "sim/cabinet/cabinet.h"
#include "sim/language/board_options.h"
#include "sim/language/cabinet_boards.h"
#include "tests/fuzz/fuzz_input.h"

namespace
{

void requireLines(const std::string &mistakes)
{
    for (const std::string &line : sim::splitAt(mistakes, '\n')) {
        unsigned int number = 0;
        fuzz::require(std::sscanf(line.c_str(), "cabinet:%u: ", &number) == 1 && number > 0, "a mistake has its line");
    }
}

void tryParts(const cabinet::Cabinet &cabinet)
{
    for (const cabinet::Board &board : cabinet.boards()) {
        for (const cabinet::Part &part : board.parts) {
            if (part.name.empty())
                continue;
            const cabinet::Place place = cabinet.find({part.kind}, part.name, board.device);
            fuzz::require(place.part == &part && place.device == board.device, "a name leads to its part");
            fuzz::require(cabinet.part(board.device, part.kind, part.number) == &part, "a number has its name");
            if (!board.name.empty())
                fuzz::require(cabinet.find({part.kind}, board.name + "." + part.name).part == &part,
                              "a board's name and a part's lead to it");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    cabinet::Cabinet cabinet;
    try {
        cabinet = cabinet::Cabinet::parse(text, "cabinet");
    } catch (const cabinet::Error &error) {
        requireLines(error.what());
        return 0;
    }
    tryParts(cabinet);
    sim::ManualClock clock;
    sim::VirtualBoards boards(clock);
    sim::plugBoards(boards, sim::boardsFrom(sim::boardArguments(cabinet)));
    return 0;
}
