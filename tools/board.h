// A board that a command was told to work on: its node, what its parts are called, and operations by their names.
//
//     Board board(settings, word);          opens the node, sends nothing
//     board.needFirmware();                 asks whether it runs
//     board.ask("SetClock", {{"time", 5}});
//     board.ask("GetClock").number("time");
#ifndef SORVANE_TOOLS_BOARD_H
#define SORVANE_TOOLS_BOARD_H

#include "protocol/encode.h"
#include "tools/command.h"
#include "tools/node.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace tools
{

/// Of the option BOARD.
constexpr const char *boardHelp = "0 to 15, /dev/Vexa_N, or a name of the cabinet file";

const char *nameOf(protocol::Model model);

/// A number, /dev/Vexa_N, or the name that the cabinet file gives. Throws UsageError.
int deviceFrom(const std::string &word, const cabinet::Cabinet &cabinet);

/// What came back, decoded; the results of an answer that is not as it should be are not asked for.
class Answer
{
public:
    explicit Answer(protocol::Decoded decoded) : decoded_(std::move(decoded)) {}

    std::uint32_t number(std::string_view name) const { return numbers(name).at(0); }
    /// The numbers of the bits that are set, or one number for each element.
    std::vector<std::uint32_t> numbers(std::string_view name) const { return find(name).numbers; }
    std::string bytes(std::string_view name) const { return find(name).bytes; }
    const protocol::Decoded &decoded() const { return decoded_; }

private:
    const protocol::Value &find(std::string_view name) const;

    protocol::Decoded decoded_;
};

class Board
{
public:
    Board(const Settings &settings, const std::string &word);

    Node &node() { return node_; }
    int device() const { return node_.device(); }
    std::string path() const { return node_.path(); }
    protocol::Model model() const { return node_.model(); }
    /// "/dev/Vexa_3", with the name that the cabinet file gives: "/dev/Vexa_3 (main)".
    std::string title() const;

    bool firmwareRuns();
    /// Throws Refusal unless it runs.
    void needFirmware();

    /// One exchange. Throws Refusal when it fails, is refused, or is answered with other bytes than it should be; what
    /// the model does not have is refused without an exchange, as the library does.
    Answer ask(std::string_view operation, std::initializer_list<protocol::Argument> arguments = {}, int port = 0);
    /// The same; the outcome is the caller's to look at.
    protocol::Decoded tryToAsk(std::string_view operation, std::initializer_list<protocol::Argument> arguments = {},
                               int port = 0);
    bool has(std::string_view operation) const { return protocol::findOperation(model(), operation) != nullptr; }

    /// The part of these kinds that a word names; throws cabinet::Error, and UsageError for a number above `most`.
    cabinet::Place part(const std::vector<cabinet::Kind> &kinds, const std::string &word, unsigned int most) const;
    /// The part with a number; null where it has no name.
    const cabinet::Part *partOf(cabinet::Kind kind, unsigned int number) const
    {
        return cabinet_->part(device(), kind, number);
    }
    /// The name of a number; empty without one.
    std::string nameOf(cabinet::Kind kind, unsigned int number) const;

private:
    const cabinet::Cabinet *cabinet_;
    Node node_;
};

/// The refusal with the code's sentence and what to try. `what` says what was tried, on which board.
[[noreturn]] void refuse(const std::string &what, int code);

}  // namespace tools

#endif
