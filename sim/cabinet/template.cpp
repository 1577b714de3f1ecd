#include "sim/cabinet/template.h"

namespace cabinet
{

namespace
{

constexpr char beginning[] = R"(# A cabinet: what the machine is and what its parts are called.
# Each part is a number, or a table in braces that says more about it. Names begin with a letter, then come letters,
# digits, _ and -; the words of commands (on, off, open, wait, ...) are none.
version = 1
name = "My machine"

[[board]]                       # once for each board
name = "main"                   # needed when there are several
device = 0                      # 0 to 15: /dev/Vexa_0
)";

constexpr char settings[] =
    R"(# What a virtual board is like before the program starts, with the values of a board of which nothing is said:
speed = "full"                  # full, high: the USB speed
number = 0                      # 0 to 7: the board number on inputs 24 to 26
eeprom = "24LC256"              # 24LC01 to 24LC512
firmware = "missing"            # missing, running: missing is loaded by the library

# What hangs on a serial port: )";

constexpr char parts[] = R"(
serial0 = "cctalk"
serial1 = { peripheral = "loopback", name = "printer" }

[board.inputs]                  # 0 to 32
start = 8
door = { number = 9, active = "low" }   # low, high: the level that means on (high)

[board.outputs]                 # 0 to 37
start_lamp = 12
win_lamp = { number = 13, colour = "red" }      # white, red, orange, yellow, green, blue, purple, pink, "#RRGGBB"

[board.coins]                   # by their input, 0 to 23, or as the acceptor's coin, 1 to 16
coin_1 = { input = 2 }
token = { cctalk = 4 }

[board.hoppers]                 # input 0 to 23 sees the coins, output 0 to 37 drives the motor
main_hopper = { input = 5, output = 37, stock = 20 }

[board.reels]                   # 0 to 2
left = 0
middle = 1
right = 2

[board.meters]                  # in the EEPROM: 1 to 8 bytes (4), order little, big (little)
total_in = { address = 8, bytes = 4, order = "little" }
total_out = 12

[board.switches]                # security switches, 0 to 7
back_door = 0
)";

}  // namespace

std::string templateFor(sim::Model model)
{
    const std::string chosen = "model = \"" + std::string(sim::nameOf(model)) + "\"" +
                               (model == sim::Model::R20s ? "" : " ") + "                  # R20, R20s, R35\n\n";
    const std::string peripherals =
        model == sim::Model::R20 ? "loopback, cctalk, polled" : "loopback, cctalk, polled, sas";
    return beginning + chosen + settings + peripherals + parts;
}

}  // namespace cabinet
