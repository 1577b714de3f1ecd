#include "sim/journal/keeper.h"

#include "sim/cabinet/event_names.h"
#include "sim/journal/left_text.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace sim
{

namespace
{

// Whoever writes everything down need not be woken by each exchange of a busy program.
constexpr Nanoseconds between = std::chrono::milliseconds(10);

std::array<int, 2> newPipe()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "keeping a journal");
    return ends;
}

void closeOnce(int &descriptor)
{
    if (descriptor != -1)
        ::close(std::exchange(descriptor, -1));
}

void blockEverySignal()
{
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

}  // namespace

void prepareRecord(const std::string &file)
{
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor == -1)
        throw std::system_error(errno, std::generic_category(), "--record \"" + file + "\"");
    ::close(descriptor);
}

Keeper::Keeper(VirtualBoards &boards, Keeping keeping, const cabinet::Cabinet &cabinet)
    : boards_(boards), devices_(allBoards(boards)), keeping_(std::move(keeping)), cabinet_(cabinet),
      names_(cabinet::eventNames(cabinet)), reader_(boards, devices_), end_(newPipe()), done_(newPipe())
{
    if (!keeping_.record.empty()) {
        keeping_.header.boards = headerBoards(boards);
        record_.open(keeping_.record, std::ios::binary);
        write(journal::jsonOf(keeping_.header) + '\n');
    }
    thread_ = std::thread([this] { keep(); });
}

Keeper::~Keeper()
{
    closeOnce(end_[1]);
    thread_.join();
    closeOnce(end_[0]);
    closeOnce(done_[0]);
}

void Keeper::finish(std::chrono::milliseconds most)
{
    closeOnce(end_[1]);
    pollfd done{done_[0], 0, 0};
    ::poll(&done, 1, static_cast<int>(most.count()));
}

void Keeper::keep()
{
    blockEverySignal();
    while (reader_.wait(end_[0])) {
        while (readOn()) {
        }
        std::this_thread::sleep_for(between);
    }
    while (readOn()) {
    }
    if (keeping_.summary)
        std::fputs(summary().c_str(), stderr);
    if (!failure_.empty())
        std::fprintf(stderr, "sorvane-sim: %s\n", failure_.c_str());
    closeOnce(done_[1]);
}

void Keeper::write(const std::string &lines)
{
    if (keeping_.record.empty() || !failure_.empty())
        return;
    errno = 0;
    record_ << lines << std::flush;
    if (!record_)
        failure_ = "--record \"" + keeping_.record + "\": " + std::strerror(errno == 0 ? EIO : errno);
}

bool Keeper::readOn()
{
    const EventReader::Batch batch = reader_.read();
    std::string lines;
    for (const journal::Event &event : batch.events) {
        summaries_[event.device].add(event);
        if (!keeping_.record.empty())
            lines += journal::jsonOf(event, names_) + '\n';
    }
    write(lines);
    lost_ += batch.lost;
    return !batch.events.empty();
}

std::string Keeper::summary()
{
    std::string text;
    for (const int device : devices_) {
        const std::shared_ptr<VirtualBoard> board = boards_.hold(device);
        if (!board)
            continue;
        const auto lock = board->lock();
        const std::string name = names_.board(device);
        const std::string asked = summaries_[device].text();
        text += (name.empty() ? "" : name + ", ") + "Vexa_" + std::to_string(device) + ", " + nameOf(board->model()) +
                "\n  asked\n" + (asked.empty() ? "    nothing\n" : asked) + "  left\n" +
                leftText(*board, device, cabinet_);
    }
    if (lost_ > 0)
        text += std::to_string(lost_) + " events came too fast to be counted\n";
    return text;
}

}  // namespace sim
