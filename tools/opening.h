// Opening through the library, and what has to hold before it is done.
#ifndef SORVANE_TOOLS_OPENING_H
#define SORVANE_TOOLS_OPENING_H

#include "tools/board.h"
#include "tools/library/opened_board.h"
#include "tools/stop_signals.h"

#include <memory>

namespace tools
{

/// The library's code as a Refusal, unless the operation succeeded.
void check(OpenedBoard &opened, int result, const std::string &what);

/// An opened board with the module that it needs. While it is there, no signal ends the program: it would leave its
/// registration behind.
class Opening
{
public:
    bool allowed = false;                 ///< --open
    const CLI::Option *beside = nullptr;  ///< --beside, which a Consent may have declared before

    void addTo(CLI::App &command);

    /// Whether opening the board would load firmware, or find out and configure its EEPROM; what it would do, or
    /// nothing.
    static std::string wouldDo(Board &board);

    /// Opens it if that does no more than to ask whether the firmware runs; or was allowed, or is answered with yes at
    /// the terminal, while no other process has the board open or that was allowed. Throws Refusal otherwise.
    OpenedBoard &open(Board &board);
    StopSignals &signals() { return *signals_; }

    Opening() = default;
    Opening(const Opening &) = delete;
    Opening &operator=(const Opening &) = delete;
    ~Opening();

private:
    std::unique_ptr<StopSignals> signals_;
    void *module_ = nullptr;
    std::unique_ptr<OpenedBoard> opened_;
};

/// Throws Refusal for a real board that would be loaded with a stand-in.
void refuseStandIn(Board &board);

}  // namespace tools

#endif
