// The words of commands, conditions and steps, none of which may be the name of a part or a board: a line reads in one
// way only, also in front of a part that is left out.
#ifndef SORVANE_SIM_CABINET_GRAMMAR_WORDS_H
#define SORVANE_SIM_CABINET_GRAMMAR_WORDS_H

#include <algorithm>
#include <iterator>
#include <string_view>

namespace cabinet
{

constexpr std::string_view grammarWords[] = {
    // what is done
    "battery", "clock", "coin", "expect", "fail", "hopper", "input", "never", "pause", "plug", "serial", "slow", "spi",
    "state", "steps", "stop", "switch", "unplug", "wait",
    // what is looked at
    "counter", "eeprom", "events", "firmware", "meter", "operation", "output", "quiet", "reel", "sram",
    // how it is, and what becomes of it
    "close", "dump", "echo", "empty", "flashing", "free", "ioctl", "jam", "jammed", "lit", "load", "off", "on", "open",
    "paid", "parity", "paying", "plugged", "pulse", "replace", "reply", "running", "send", "sent", "set", "short",
    "status", "still", "stock", "turning",
    // what holds them together
    "at", "board", "count", "end", "not", "request", "within"};

constexpr bool isGrammarWord(std::string_view word)
{
    return std::find(std::begin(grammarWords), std::end(grammarWords), word) != std::end(grammarWords);
}

}  // namespace cabinet

#endif
