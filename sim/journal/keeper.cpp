#include "sim/journal/keeper.h"

#include "sim/cabinet/event_names.h"
#include "sim/journal/left_text.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace sim
{

namespace
{

// Somebody who writes down everything need not be woken by each exchange of a busy program.
constexpr Nanoseconds between = std::chrono::milliseconds(10);

int newEventDescriptor()
{
    const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor == -1)
        throw std::system_error(errno, std::generic_category(), "keeping a journal");
    return descriptor;
}

}  // namespace

void prepareRecord(const std::string &file)
{
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor == -1)
        throw std::system_error(errno, std::generic_category(), "--record \"" + file + "\"");
    ::close(descriptor);
}

Keeper::Keeper(VirtualBoards &boards, const journal::Header &header, const std::string &record,
               const cabinet::Cabinet &cabinet)
    : boards_(boards), devices_(allBoards(boards)), cabinet_(cabinet), names_(cabinet::eventNames(cabinet)),
      reader_(boards, devices_), file_(record), end_(newEventDescriptor())
{
    if (!file_.empty()) {
        record_.open(file_, std::ios::app | std::ios::binary);
        write(journal::jsonOf(header) + '\n');
    }
    thread_ = std::thread([this] { keep(); });
}

void Keeper::keep()
{
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
    while (reader_.wait(end_)) {
        while (readOn()) {
        }
        std::this_thread::sleep_for(between);
    }
}

void Keeper::write(const std::string &lines)
{
    if (file_.empty() || !failure_.empty())
        return;
    errno = 0;
    record_ << lines << std::flush;
    if (!record_)
        failure_ = "--record \"" + file_ + "\": " + std::strerror(errno == 0 ? EIO : errno);
}

bool Keeper::readOn()
{
    const EventReader::Batch batch = reader_.read();
    std::string lines;
    for (const journal::Event &event : batch.events) {
        summaries_[event.device].add(event);
        if (!file_.empty())
            lines += journal::jsonOf(event, names_) + '\n';
    }
    write(lines);
    lost_ += batch.lost;
    return !batch.events.empty();
}

void Keeper::finish()
{
    if (!thread_.joinable())
        return;
    ::eventfd_write(end_, 1);
    thread_.join();
    while (readOn()) {
    }
    ::close(end_);
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
        text += (name.empty() ? "" : name + ", ") + "Vexa_" + std::to_string(device) + ", " + nameOf(board->model()) +
                "\n  asked\n" + summaries_[device].text() + "  left\n" + leftText(*board, device, cabinet_);
    }
    if (lost_ > 0)
        text += std::to_string(lost_) + " events came too fast to be counted\n";
    return text;
}

}  // namespace sim
