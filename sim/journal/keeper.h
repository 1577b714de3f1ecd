// Keeps what happens on the boards of a run beyond what their journals hold: as a file that is written as it goes, and
// as a summary for the end.
#ifndef SORVANE_SIM_JOURNAL_KEEPER_H
#define SORVANE_SIM_JOURNAL_KEEPER_H

#include "journal/json_lines.h"
#include "journal/summary.h"
#include "sim/cabinet/cabinet.h"
#include "sim/journal/event_reader.h"

#include <array>
#include <fstream>
#include <thread>

namespace sim
{

/// What is kept.
struct Keeping {
    bool summary = false;
    std::string record;  ///< a file; empty: none
    journal::Header header;

    bool anything() const { return summary || !record.empty(); }
};

/// Creates the file, or empties it, so that a record can be kept there. Throws std::system_error with the reason.
void prepareRecord(const std::string &file);

class Keeper
{
public:
    /// Goes on in a thread of its own. The boards and the cabinet outlive it.
    Keeper(VirtualBoards &boards, Keeping keeping, const cabinet::Cabinet &cabinet);
    Keeper(const Keeper &) = delete;
    Keeper &operator=(const Keeper &) = delete;
    ~Keeper();

    /// Reads on to the present; the summary, and what kept the record from being written, go to standard error. Waits
    /// so long at most, since it may be called in a signal handler, where the thread that it has interrupted may hold a
    /// board.
    void finish(std::chrono::milliseconds most);

private:
    void keep();
    bool readOn();
    void write(const std::string &lines);
    std::string summary();

    VirtualBoards &boards_;
    std::vector<int> devices_;
    Keeping keeping_;
    const cabinet::Cabinet &cabinet_;
    journal::Names names_;
    EventReader reader_;
    std::map<int, journal::Summary> summaries_;
    std::uint64_t lost_ = 0;
    std::ofstream record_;
    std::string failure_;
    std::array<int, 2> end_{};   // a pipe, whose writing end is closed when the thread is to end
    std::array<int, 2> done_{};  // the same when it has ended
    std::thread thread_;
};

}  // namespace sim

#endif
