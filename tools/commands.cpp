// The table of commands, in the order in which --help shows them.
#include "tools/command.h"

namespace tools
{

Command::Action declareList(CLI::App &command);
Command::Action declareInfo(CLI::App &command);
Command::Action declareInputs(CLI::App &command);
Command::Action declareOutputs(CLI::App &command);
Command::Action declareOutput(CLI::App &command);
Command::Action declarePulse(CLI::App &command);
Command::Action declareBrightness(CLI::App &command);
Command::Action declareCoins(CLI::App &command);
Command::Action declareHopper(CLI::App &command);
Command::Action declareReels(CLI::App &command);
Command::Action declareReel(CLI::App &command);
Command::Action declareSerial(CLI::App &command);
Command::Action declareEeprom(CLI::App &command);
Command::Action declareSram(CLI::App &command);
Command::Action declareMeters(CLI::App &command);
Command::Action declareClock(CLI::App &command);
Command::Action declareSecurity(CLI::App &command);
Command::Action declareBattery(CLI::App &command);
Command::Action declareRandom(CLI::App &command);
Command::Action declareFirmware(CLI::App &command);
Command::Action declareRaw(CLI::App &command);
Command::Action declareSelftest(CLI::App &command);
Command::Action declareDoctor(CLI::App &command);
Command::Action declareTrace(CLI::App &command);
Command::Action declareShow(CLI::App &command);

namespace
{

constexpr Command table[] = {
    {"list", "every board: model, speed, firmware, serial numbers, who has it open", declareList},
    {"info", "the same of one board", declareInfo},
    {"inputs", "the inputs as they are, and with --follow every change", declareInputs},
    {"outputs", "what programs have asked of the outputs", declareOutputs},
    {"output", "switch an output on or off, or let it flash", declareOutput},
    {"pulse", "a pulse on an output", declarePulse},
    {"brightness", "the common brightness of the outputs", declareBrightness},
    {"coins", "the pulses that are counted on an input", declareCoins},
    {"hopper", "pay coins out of a hopper, tell its state, stop it", declareHopper},
    {"reels", "what the board tells of its reels", declareReels},
    {"reel", "spin a reel", declareReel},
    {"serial", "a serial port as a terminal; Ctrl-] ends", declareSerial},
    {"eeprom", "the EEPROM to a file and back; which one is fitted", declareEeprom},
    {"sram", "the SRAM to a file and back", declareSram},
    {"meters", "the meters of the cabinet file", declareMeters},
    {"clock", "the board's clock, and setting it", declareClock},
    {"security", "the security switches' flags and log, and clearing them", declareSecurity},
    {"battery", "the battery's and the clock's failure flags", declareBattery},
    {"random", "numbers of the board's random number generator", declareRandom},
    {"firmware", "whether the firmware runs, and loading it", declareFirmware},
    {"raw", "any request, with its answer in words", declareRaw},
    {"selftest", "whether a board is well, by what resets and takes nothing", declareSelftest},
    {"doctor", "what is wrong with the machine, and what to do", declareDoctor},
    {"trace", "trace [OPTION...] -- PROGRAM [ARG...]: every exchange of a program", declareTrace, true},
    {"show", "show FILE: what a recording holds, as trace tells it", declareShow},
};

}  // namespace

std::span<const Command> commands()
{
    return table;
}

}  // namespace tools
