#include "sim/journal/replay.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <new>
#include <sys/mman.h>
#include <system_error>

namespace sim
{

namespace
{

constexpr std::size_t mostBytes = 64;
constexpr int largestErrno = 4095;

std::atomic<bool> *sharedFlag()
{
    void *memory =
        ::mmap(nullptr, sizeof(std::atomic<bool>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::system_error(errno, std::generic_category(), "--replay");
    return new (memory) std::atomic<bool>(false);
}

std::string questionOf(const journal::Event &event)
{
    return protocol::question(protocol::decode(journal::exchangeOf(event)), mostBytes);
}

std::string boardOf(const journal::Event &event)
{
    return "Vexa_" + std::to_string(event.device);
}

bool asksTheSame(const journal::Event &one, const journal::Event &other)
{
    return one.request == other.request && one.pipe == other.pipe && one.before == other.before;
}

int errorOf(const journal::Event &event)
{
    return event.status > 0 && event.status <= largestErrno ? event.status : EIO;
}

}  // namespace

Replay::Replay(const std::string &file) : file_(file), hasDeparted_(sharedFlag())
{
    std::ifstream stream(file);
    if (!stream)
        throw std::system_error(errno, std::generic_category(), "--replay \"" + file + "\"");
    read(stream);
    if (boards_.empty())
        throw std::runtime_error("--replay \"" + file + "\": there is no board in it");
}

Replay::~Replay()
{
    ::munmap(hasDeparted_, sizeof *hasDeparted_);
}

void Replay::read(std::istream &stream)
{
    int number = 1;
    try {
        std::string line;
        std::getline(stream, line);
        for (const journal::HeaderBoard &board : journal::headerFrom(line).boards)
            boards_[board.device] = board;
        for (++number; std::getline(stream, line); ++number) {
            if (std::optional<journal::Event> event = journal::eventFrom(line))
                add(std::move(*event));
        }
    } catch (const journal::FormatError &error) {
        throw std::runtime_error("--replay " + file_ + ":" + std::to_string(number) + ": " + error.what());
    }
    for (const auto &[device, board] : boards_) {
        if (device < 0 || device >= deviceCount)
            throw std::runtime_error("--replay " + file_ + ": device number " + std::to_string(device) +
                                     "; allowed: 0 to 15");
    }
}

void Replay::add(journal::Event event)
{
    const bool ended = event.outcome != protocol::Outcome::Failed || event.status != EINTR;
    if (event.kind != journal::Kind::Exchange || !ended)
        return;
    boards_.try_emplace(event.device, journal::HeaderBoard{event.device, event.model, false});
    recorded_[event.device].exchanges.push_back(std::move(event));
}

void Replay::answerFor(VirtualBoards &boards, std::function<void(const std::string &)> departed)
{
    departed_ = std::move(departed);
    for (const auto &[device, info] : boards_) {
        const std::shared_ptr<VirtualBoard> board = boards.hold(device);
        const auto lock = board->lock();
        journal::Event came;
        came.device = device;
        came.model = info.model;
        board->answerBy([this, came, &recorded = recorded_[device]](unsigned char request, int pipe, Payload payload) {
            journal::Event asked = came;
            asked.request = request;
            asked.pipe = static_cast<unsigned char>(pipe);
            asked.before.assign(payload.begin(), payload.end());
            return answer(recorded, asked);
        });
    }
}

ScriptedAnswer Replay::answer(Board &board, const journal::Event &came)
{
    const std::lock_guard lock(mutex_);
    if (hasDeparted() || board.next == board.exchanges.size() || !asksTheSame(board.exchanges[board.next], came))
        return depart(board, came);
    const journal::Event &recorded = board.exchanges[board.next];
    ScriptedAnswer answer;
    answer.delivered = [this, &board] {
        const std::lock_guard advance(mutex_);
        ++board.next;
    };
    if (recorded.outcome == protocol::Outcome::Failed)
        answer.ioctlResult = -errorOf(recorded);
    else
        answer.status = recorded.status;
    answer.bytes.assign(recorded.bytes.begin(), recorded.bytes.end());
    return answer;
}

ScriptedAnswer Replay::depart(const Board &board, const journal::Event &came)
{
    if (!hasDeparted_->exchange(true)) {
        const bool ended = board.next == board.exchanges.size();
        departed_("--replay " + file_ + ": exchange " + std::to_string(board.next + 1) + " of " + boardOf(came) +
                  " is not the recorded one\n  expected: " +
                  (ended ? "nothing more, the recording ends here" : questionOf(board.exchanges[board.next])) +
                  "\n  came:     " + questionOf(came));
    }
    ScriptedAnswer answer;
    answer.ioctlResult = -EIO;
    return answer;
}

std::string Replay::unasked()
{
    const std::lock_guard lock(mutex_);
    std::string text;
    for (const auto &[device, board] : recorded_) {
        const std::size_t left = board.exchanges.size() - board.next;
        if (left > 0 && text.empty())
            text = "--replay " + file_ + ": the program ended " + std::to_string(left) + " exchanges before " +
                   boardOf(board.exchanges[board.next]) + " did, in front of " +
                   questionOf(board.exchanges[board.next]);
    }
    return text;
}

}  // namespace sim
