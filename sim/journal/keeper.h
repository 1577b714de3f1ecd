// Keeps what happens on the boards of a run beyond what their journals hold: as a file that is written as it goes, and
// as a summary for the end.
#ifndef SORVANE_SIM_JOURNAL_KEEPER_H
#define SORVANE_SIM_JOURNAL_KEEPER_H

#include "journal/json_lines.h"
#include "journal/summary.h"
#include "sim/cabinet/cabinet.h"
#include "sim/journal/event_reader.h"

#include <fstream>
#include <thread>

namespace sim
{

class Keeper
{
public:
    /// Goes on in a thread of its own. `record` is a file that exists already, or empty. The boards and
    /// the cabinet outlive it.
    Keeper(VirtualBoards &boards, const journal::Header &header, const std::string &record,
           const cabinet::Cabinet &cabinet);
    Keeper(const Keeper &) = delete;
    Keeper &operator=(const Keeper &) = delete;
    ~Keeper() { finish(); }

    /// Reads on to the present and ends the thread.
    void finish();

    /// For the end: what each board was asked, and how it was left.
    std::string summary();
    /// What kept the record from being written; empty if nothing did.
    const std::string &failure() const { return failure_; }

private:
    void keep();
    bool readOn();
    void write(const std::string &lines);

    VirtualBoards &boards_;
    std::vector<int> devices_;
    const cabinet::Cabinet &cabinet_;
    journal::Names names_;
    EventReader reader_;
    std::map<int, journal::Summary> summaries_;
    std::uint64_t lost_ = 0;
    std::string file_;
    std::ofstream record_;
    std::string failure_;
    int end_;  // becomes readable when the thread is to end
    std::thread thread_;
};

/// Creates the file, or empties it, so that a record can be kept there. Throws std::system_error with the reason.
void prepareRecord(const std::string &file);

}  // namespace sim

#endif
