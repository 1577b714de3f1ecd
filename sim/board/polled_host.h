// The poll slots of a serial port: the board asks a peripheral by itself and keeps the answers.
//
// What the options mean is the firmware's; they make no difference here. A slot sends its two messages in turn, leaving
// out an empty one, with a pause of its time (10 ms at least) behind each answer; a slot whose messages are both empty
// polls nothing. The length byte and the extra length tell where an answer ends. An answer that is not complete within
// the host timeout (0.5 s until it is set) is dropped. A slot keeps 32 answers; while it is full it does not poll.
// Emptying drops all answers, deleting the oldest. Status 0 is an answer, 1 that there is none, 2 that there is none
// because the last poll was not answered.
#ifndef SORVANE_SIM_BOARD_POLLED_HOST_H
#define SORVANE_SIM_BOARD_POLLED_HOST_H

#include "sim/board/part.h"
#include "sim/core/timeline.h"

#include <array>
#include <deque>

namespace sim
{

constexpr unsigned int pollSlotCount = 4;
constexpr std::size_t pollSlotCapacity = 32;
constexpr unsigned char polledMessage = 0;
constexpr unsigned char polledNothing = 1;
constexpr unsigned char polledNoAnswer = 2;

class PolledHost : public Part
{
public:
    struct Slot {
        bool polling = false;
        std::array<Bytes, 2> messages;
        unsigned int nextMessage = 0;
        unsigned char lengthIndex = 0;
        unsigned char lengthExtra = 0;
        Nanoseconds period{};
        Nanoseconds timeout = std::chrono::milliseconds(500);
        bool unanswered = false;
        std::deque<Bytes> answers;
        std::size_t handedOut = 0;  // bytes of the oldest answer that the host has already
    };

    PolledHost(Timeline &timeline, std::size_t largestAnswer, std::function<void(const Words &)> send);

    const Slot &slot(unsigned int number) const { return slots_.at(number); }

    /// A word from the peripheral: true when a poll was waiting for it.
    bool take(std::uint16_t word);

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    Reply configure(Payload payload);
    Reply receive(Slot &slot);
    void poll(unsigned int number);
    void pollLater(unsigned int number, Nanoseconds delay);
    void endPoll(bool answered);
    void endAsking();
    void forget(Slot &slot, std::size_t count);

    Timeline &timeline_;
    std::size_t largestPart_;
    std::function<void(const Words &)> send_;
    std::array<Slot, pollSlotCount> slots_;
    std::optional<unsigned int> asking_;  // the slot whose poll waits for its answer
    Bytes incoming_;
};

}  // namespace sim

#endif
