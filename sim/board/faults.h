// Faults on demand: what goes wrong with one of the next exchanges.
//
//     board.faults().add(Fault::status(0x1e).on(77).skip(2).times(3));
#ifndef SORVANE_SIM_BOARD_FAULTS_H
#define SORVANE_SIM_BOARD_FAULTS_H

#include "sim/core/bytes.h"
#include "sim/core/clock.h"

#include <deque>
#include <optional>
#include <string>
#include <utility>

namespace sim
{

struct Fault {
    enum class Kind {
        IoctlResult,  ///< the driver call returns `number`: a negative errno, or a positive result
        Status,       ///< the board refuses: R20, the low byte of `number`; others, `number` as the status word
        AtMost,       ///< the answer is cut to `number` payload bytes
        AtLeast,      ///< the answer is filled up to `number` payload bytes
        PacketCount,  ///< R20: the driver reports `number` received bytes, whatever came
        Echo,         ///< R20: the answer echoes the code `number`
        Replace,      ///< the board answers `bytes` with status 0, whatever it would have answered
        Unplug,       ///< the board is pulled off as the exchange begins
        Delay         ///< the exchange takes `delay` longer; it goes together with any other fault
    };

    static Fault ioctlFails(int error) { return {Kind::IoctlResult, -static_cast<std::int64_t>(error)}; }
    static Fault ioctlReturns(int result) { return {Kind::IoctlResult, result}; }
    static Fault status(std::uint32_t status) { return {Kind::Status, status}; }
    static Fault emptyAnswer() { return shortAnswer(0); }
    static Fault shortAnswer(unsigned int payloadBytes) { return {Kind::AtMost, payloadBytes}; }
    static Fault longAnswer(unsigned int payloadBytes) { return {Kind::AtLeast, payloadBytes}; }
    static Fault packetCount(std::uint32_t received) { return {Kind::PacketCount, received}; }
    static Fault echo(unsigned char code) { return {Kind::Echo, code}; }
    static Fault answer(Bytes bytes);
    static Fault unplug() { return {Kind::Unplug, 0}; }
    static Fault slow(Nanoseconds delay);

    /// Only exchanges of this request; without a pipe, on any. Code 0 is every request.
    Fault &on(unsigned char code, int onPipe = 0);
    /// The first n matching exchanges go well.
    Fault &skip(unsigned int n);
    /// It strikes n matching exchanges; once unless told otherwise.
    Fault &times(unsigned int n);
    Fault &forever();
    /// With IoctlResult: the board has carried the exchange out, only its answer is lost.
    Fault &carriedOut();

    Fault(Kind faultKind, std::int64_t faultNumber) : kind(faultKind), number(faultNumber) {}

    Kind kind;
    std::int64_t number;
    Bytes bytes;
    Nanoseconds delay{};
    unsigned char request = 0;
    int pipe = 0;
    unsigned int skips = 0;
    std::optional<unsigned int> count = 1;
    bool boardSaw = false;
};

/// "status 30", "ioctl 5": what it does to one exchange.
std::string textOf(const Fault &fault);

/// The faults that wait for their exchange. The first that matches strikes.
class Faults
{
public:
    void add(Fault fault) { queue_.push_back(std::move(fault)); }
    void clear();
    /// The exchanges take their usual time again; the other faults go on waiting.
    void removeDelays();
    /// Grows with each of the two: an exchange that waits already has waited enough then.
    unsigned int delaysCalledOff() const { return delaysCalledOff_; }
    bool empty() const { return queue_.empty(); }
    std::size_t size() const { return queue_.size(); }

    /// The fault of an exchange, without using it up.
    std::optional<Fault> find(unsigned char request, int pipe) const;
    /// The exchange is over: a fault that struck or was skipped is counted.
    void passed(unsigned char request, int pipe);
    /// How much longer the exchange takes; uses the delay up.
    Nanoseconds takeDelay(unsigned char request, int pipe);

private:
    void countDown(const std::deque<Fault>::iterator &fault);

    std::deque<Fault> queue_;
    unsigned int delaysCalledOff_ = 0;
};

}  // namespace sim

#endif
