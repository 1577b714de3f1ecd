// A recording that answers a program in the place of boards: each board says again what it said, in the order in which
// it was asked.
//
// Recordings of traces and of runs serve alike. Exchanges of which nobody knows how they ended are left out.
#ifndef SORVANE_SIM_JOURNAL_REPLAY_H
#define SORVANE_SIM_JOURNAL_REPLAY_H

#include "journal/json_lines.h"
#include "sim/board/virtual_boards.h"

#include <atomic>
#include <map>

namespace sim
{

/// The status of a run whose program asked for something else than the recording has.
constexpr int statusOfDeparture = 123;

class Replay
{
public:
    /// Throws std::runtime_error with the file's mistake.
    explicit Replay(const std::string &file);
    Replay(const Replay &) = delete;
    Replay &operator=(const Replay &) = delete;
    ~Replay();

    /// Those of the recording.
    const std::map<int, journal::HeaderBoard> &boards() const { return boards_; }

    /// Lets it answer for these. The first exchange that is not the recorded one, and every one from then on, fails
    /// with EIO; `departed` is told once what was expected and what came.
    void answerFor(VirtualBoards &boards, std::function<void(const std::string &)> departed);

    /// Whether there was such an exchange; known in processes that were forked since, too.
    bool hasDeparted() const { return *hasDeparted_; }
    /// What nobody asked for, a sentence; empty when it was all.
    std::string unasked();

private:
    struct Board {
        std::vector<journal::Event> exchanges;
        std::size_t next = 0;
    };

    void read(std::istream &stream);
    void add(journal::Event event);
    ScriptedAnswer answer(Board &board, const journal::Event &came);
    ScriptedAnswer depart(const Board &board, const journal::Event &came);

    std::string file_;
    std::map<int, journal::HeaderBoard> boards_;
    std::map<int, Board> recorded_;
    std::mutex mutex_;
    std::function<void(const std::string &)> departed_;
    std::atomic<bool> *hasDeparted_;  // in memory that is shared with processes that are forked
};

}  // namespace sim

#endif
