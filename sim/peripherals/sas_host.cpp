#include "sim/peripherals/sas_host.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr Nanoseconds pollPeriod = std::chrono::milliseconds(200);
constexpr std::uint16_t generalPoll = 0x80;
constexpr std::size_t answersKept = 256;

}  // namespace

SASHost::~SASHost()
{
    if (line_)
        line_->timeline().cancel(this);
}

void SASHost::attach(SerialLine &line)
{
    SerialPeripheral::attach(line);
    setPolling(polling_);
}

void SASHost::setPolling(bool polling)
{
    polling_ = polling;
    if (!line_)
        return;
    line_->timeline().cancel(this);
    if (polling_)
        line_->timeline().after(pollPeriod, this, [this] { pollAgain(); });
}

void SASHost::pollAgain()
{
    poll();
    line_->timeline().after(pollPeriod, this, [this] { pollAgain(); });
}

void SASHost::poll(Payload bytes)
{
    const std::uint16_t address = bytes.empty() ? generalPoll | machineAddress_ : machineAddress_;
    Words words{static_cast<std::uint16_t>(sasWakeUp | address)};
    words.insert(words.end(), bytes.begin(), bytes.end());
    line_->transmit(words);
}

void SASHost::receive(const Words &words)
{
    answers_.insert(answers_.end(), words.begin(), words.end());
    if (answers_.size() > answersKept)
        answers_.erase(answers_.begin(), answers_.end() - answersKept);
}

}  // namespace sim
