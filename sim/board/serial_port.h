// One of the two serial ports: its buffers, its timeout message, and behind it the poll slots and SAS.
//
// The choices that the firmware would make: a port nobody configured runs at 9600 baud, type 0; on a 9-bit line a word
// travels as two bytes, high byte first, to and from the host; the receive buffer holds 1024 words and drops what comes
// then; a timestamp is the low byte of the time in milliseconds, and a batch that finds nothing is the present
// timestamp alone; a batch has at most 62 bytes on an R20, else 254 or 255, so that its length fits a byte; parity
// errors are counted from the last configuration on. The message id of port 0 makes no difference: every process counts
// its own, so equal ids say nothing, and each byte is handed out once. The timeout message goes to the peripheral once
// when the host has sent nothing for its time.
#ifndef SORVANE_SIM_BOARD_SERIAL_PORT_H
#define SORVANE_SIM_BOARD_SERIAL_PORT_H

#include "sim/board/diary.h"
#include "sim/board/firmware.h"
#include "sim/board/polled_host.h"
#include "sim/board/sas.h"
#include "sim/board/serial_line_settings.h"
#include "sim/peripherals/serial_peripheral.h"

#include <deque>
#include <memory>

namespace sim
{

constexpr std::size_t serialBufferCapacity = 1024;

class SerialPort : public Part, public SerialLine
{
public:
    SerialPort(unsigned int number, Model model, Timeline &timeline, const Firmware &firmware, Diary &diary);
    ~SerialPort() override;

    const SerialLineSettings &settings() const { return settings_; }

    /// Hangs a peripheral on the port, in place of the one that was there; null: nothing.
    void connect(std::unique_ptr<SerialPeripheral> peripheral);
    SerialPeripheral *peripheral() { return peripheral_.get(); }
    const SerialPeripheral *peripheral() const { return peripheral_.get(); }
    /// The peripheral if it is of this kind, else null.
    template <class Kind>
    Kind *peripheralAs()
    {
        return dynamic_cast<Kind *>(peripheral_.get());
    }

    /// As if the peripheral had sent these bytes.
    void deliver(Payload bytes);
    /// This many of the words that arrive next have a wrong parity: they are counted, and received all the same.
    void spoilParity(unsigned int words = 1) { wordsToSpoil_ += words; }

    unsigned int parityErrors() const { return parityErrors_; }
    std::size_t waiting() const { return received_.size(); }
    /// Every word that has left the port, polls and messages of the board itself included; the last 1024.
    const std::deque<std::uint16_t> &sent() const { return sent_; }
    std::size_t sentCount() const { return sentCount_; }
    const PolledHost &polledHost() const { return polledHost_; }
    const SAS &sas() const { return sas_; }

    /// The board sends on its own account.
    void send(const Words &words);

    void transmit(const Words &words) override;
    Timeline &timeline() override { return timeline_; }

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    struct Received {
        std::uint16_t word;
        unsigned char timestamp;
    };

    Reply configure(Payload payload);
    Reply sendFromHost(Payload payload);
    Reply receive();
    Reply receiveWithTimestamps();
    Reply setTimeoutMessage(Payload payload);
    Bytes wire(std::size_t count) const;
    void arrived(std::uint16_t word, bool last);
    void noteReceived();
    void drop(std::size_t count);
    void restartTimeout();
    std::size_t wordSize() const { return settings_.nineBit() ? 2 : 1; }

    unsigned int number_;
    std::size_t largestAnswer_;
    Timeline &timeline_;
    const Firmware &firmware_;
    Diary &diary_;
    SerialLineSettings settings_;
    std::unique_ptr<SerialPeripheral> peripheral_;
    PolledHost polledHost_;
    SAS sas_;
    std::deque<Received> received_;
    Bytes arriving_;  // what has come of the words that were sent together
    std::deque<std::uint16_t> sent_;
    std::size_t sentCount_ = 0;
    unsigned int parityErrors_ = 0;
    unsigned int wordsToSpoil_ = 0;
    Nanoseconds sendLineFree_{};
    Nanoseconds receiveLineFree_{};
    Words timeoutMessage_;
    Nanoseconds timeout_{};
};

}  // namespace sim

#endif
