#include "sim/language/cabinet_boards.h"

namespace sim
{

namespace
{

std::string argumentFor(const cabinet::Part &part)
{
    const std::string number = std::to_string(part.number);
    switch (part.kind) {
    case cabinet::Kind::Input:
        return part.activeLow ? ",input" + number + "=on" : "";
    case cabinet::Kind::Hopper:
        return ",hopper" + number + "=" + std::to_string(part.stock) +
               (part.output ? "@" + std::to_string(*part.output) : "");
    case cabinet::Kind::Serial:
        return ",serial" + number + "=" + part.peripheral;
    default:
        return "";
    }
}

}  // namespace

TextWords boardArguments(const cabinet::Cabinet &cabinet)
{
    TextWords arguments;
    for (const cabinet::Board &board : cabinet.boards()) {
        std::string argument = std::to_string(board.device) + "=" + nameOf(board.model) +
                               ",speed=" + (board.highSpeed ? "high" : "full") +
                               ",number=" + std::to_string(board.number) + ",eeprom=" + board.eeprom->name +
                               ",firmware=" + (board.firmwareRunning ? "running" : "missing");
        if (!board.eepromFile.empty())
            argument += ",eeprom_file=" + board.eepromFile;
        if (!board.sramFile.empty())
            argument += ",sram_file=" + board.sramFile;
        for (const cabinet::Part &part : board.parts)
            argument += argumentFor(part);
        arguments.push_back(argument);
    }
    return arguments;
}

}  // namespace sim
