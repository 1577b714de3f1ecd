// The table of everything that can be done to a board by command.
#ifndef SORVANE_SIM_LANGUAGE_BOARD_ACTIONS_H
#define SORVANE_SIM_LANGUAGE_BOARD_ACTIONS_H

#include "sim/board/virtual_board.h"
#include "sim/language/words.h"

namespace sim
{

/// The words behind a command's name, taken one after the other.
class Arguments
{
public:
    explicit Arguments(TextWords words) : words_(std::move(words)) {}

    bool any() const { return next_ < words_.size(); }
    /// The next word, empty when there is none.
    std::string take() { return any() ? words_[next_++] : ""; }
    /// Takes the next word if it is this one.
    bool takeIf(const std::string &word);
    unsigned int number(const std::string &what, unsigned long least, unsigned long most);
    /// The next word if it is a number, else this.
    unsigned int numberOr(unsigned int otherwise, const std::string &what, unsigned long least, unsigned long most);
    /// Throws UsageError when words are left.
    void end() const;

private:
    TextWords words_;
    std::size_t next_ = 0;
};

/// Carried out with the board's lock held; the result is shown to whoever asked.
using Action = std::function<std::string(VirtualBoard &)>;

struct ActionKind {
    const char *name;
    const char *usage;
    const char *help;
    Action (*parse)(Arguments &arguments);
};

extern const ActionKind actionKinds[12];

}  // namespace sim

#endif
