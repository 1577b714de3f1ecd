// A board as it behaves behind its driver.
//
//     ManualClock clock;
//     VirtualBoard board(Model::R35, clock);
//     board.highSpeed().boardNumber(3).eeprom(E24LC64).firmwareRunning();
//     board.inputs().set(3, true);
//
// A board may be driven from several threads by whoever holds lock(); the driver (sim/driver/driver.h) takes it by
// itself, everything here leaves it to the caller. Every accessor first lets happen what is due by the board's clock; a
// reference that is kept longer shows the state of the last such moment.
//
// What happens is written down in the order of its times: what a request does or time brings at once, what somebody
// does through an accessor with the next access, or when the lock is given back.
#ifndef SORVANE_SIM_BOARD_VIRTUAL_BOARD_H
#define SORVANE_SIM_BOARD_VIRTUAL_BOARD_H

#include "sim/board/diagnostics.h"
#include "sim/board/eeprom.h"
#include "sim/board/faults.h"
#include "sim/board/hoppers.h"
#include "sim/board/identity.h"
#include "sim/board/pulsed_inputs.h"
#include "sim/board/pulsed_outputs.h"
#include "sim/board/random_generator.h"
#include "sim/board/recorder.h"
#include "sim/board/reels.h"
#include "sim/board/security_switches.h"
#include "sim/board/serial_port.h"
#include "sim/board/snapshot.h"
#include "sim/board/spi.h"
#include "sim/board/state.h"
#include "sim/core/bell.h"

#include <mutex>

namespace sim
{

struct Answer {
    int status = 0;
    Bytes bytes;
};

/// An exchange that the board has worked out but not carried out: the driver first makes sure that it can be delivered.
struct PendingExchange {
    Exchange exchange;                         ///< as the caller is going to see it
    int ioctlResult = 0;                       ///< not 0: what the driver call returns instead of an answer
    bool reachesBoard = true;                  ///< false: a fault or a pulled plug keeps it from the board
    unsigned char echo = 0;                    ///< R20: the request code that comes back
    std::optional<std::uint32_t> packetCount;  ///< R20: the received count when it is a lie
    bool unplugs = false;
    std::optional<Fault> fault;  ///< that strikes
    std::function<void()> delivered;
};

/// What a board says that is not asked itself.
struct ScriptedAnswer {
    int ioctlResult = 0;  ///< not 0: the driver call fails with it
    int status = 0;
    Bytes bytes = {};
    std::function<void()> delivered = {};
};

class VirtualBoard
{
public:
    VirtualBoard(Model model, Clock &clock);
    VirtualBoard(const VirtualBoard &) = delete;
    VirtualBoard &operator=(const VirtualBoard &) = delete;

    // What is set before the first exchange; each returns the board.
    VirtualBoard &highSpeed();
    VirtualBoard &boardNumber(unsigned int number);
    VirtualBoard &eeprom(const R20EEPROM &chip);
    VirtualBoard &firmwareRunning();
    VirtualBoard &hopper(unsigned int input, unsigned int stock, std::optional<unsigned int> motor = std::nullopt);
    VirtualBoard &serialPeripheral(unsigned int port, std::unique_ptr<SerialPeripheral> peripheral);

    Model model() const { return model_; }
    bool isHighSpeed() const { return highSpeed_; }

    Inputs &inputs() { return settled(inputs_); }
    Outputs &outputs() { return settled(outputs_); }
    Hoppers &hoppers() { return settled(hoppers_); }
    Reels &reels() { return settled(reels_); }
    SerialPort &serialPort(unsigned int port) { return settled(*serialPorts_.at(port)); }
    EEPROM &eeprom() { return settled(eeprom_); }
    SRAM &sram() { return settled(sram_); }
    Firmware &firmware() { return settled(firmware_); }
    Recorder &recorder() { return settled(recorder_); }
    SPI &spi() { return spi_; }
    RealTimeClock &clock() { return settled(clock_); }
    Battery &battery() { return settled(battery_); }
    SecuritySwitches &switches() { return settled(switches_); }
    RandomGenerator &random() { return random_; }
    Identity &identity() { return identity_; }
    Faults &faults() { return faults_; }
    Timeline &timeline() { return timeline_; }

    /// One exchange as the driver asks for it: code, pipe 1 to 7, payload. Faults of the driver call itself show in
    /// sim/driver/driver.h only; here such an exchange answers status -1.
    Answer exchange(unsigned char request, int pipe, const unsigned char *payload, std::size_t length);

    /// The same in two steps, with the lock held over both. Until complete() nothing has happened, not even in the
    /// trace and to the faults. The payload stays alive until then.
    PendingExchange prepare(unsigned char request, int pipe, Payload payload);
    void complete(PendingExchange &pending);

    /// The exchanges that reached the board, the oldest first; the last 4096.
    const std::deque<Exchange> &exchanges() const { return exchanges_; }
    void clearExchanges() { exchanges_.clear(); }
    std::uint64_t exchangeCount() const { return exchangeCount_; }

    /// Scripts one of the next answers, whatever is asked: status 0 and these bytes.
    void answerNext(Bytes bytes) { faults_.add(Fault::answer(std::move(bytes))); }

    /// Something else answers from now on: neither the firmware nor the parts, nor faults, are asked. It is called with
    /// the board's lock held.
    using Script = std::function<ScriptedAnswer(unsigned char request, int pipe, Payload payload)>;
    void answerBy(Script script) { script_ = std::move(script); }

    /// A coin of this number is thrown in: into the ccTalk acceptor if one hangs on a serial port, otherwise a pulse on
    /// the input of that number. False when the acceptor rejects it.
    bool insertCoin(unsigned int coin);
    /// One that is counted on an input, whatever hangs on the serial ports.
    void pulseCoin(unsigned int input);

    /// How much longer an exchange takes, by a fault that is used up.
    Nanoseconds takeDelay(unsigned char request, int pipe);

    void plug();
    void unplug();
    /// Told when the board has lost its power. What it throws comes out of whatever pulled the plug.
    void onPowerLoss(std::function<void()> listener) { powerLossListener_ = std::move(listener); }
    bool plugged() const { return plugged_; }
    void powerCycle();
    /// How often it has been plugged; a descriptor of an earlier plug stays dead.
    std::uint64_t generation() const { return generation_; }

    BoardState state();

    /// The states that the journal tells of, as they are now.
    Snapshot snapshot();
    /// What has happened so far.
    const journal::Ring &events();
    /// Before the first event: the board's number in them, and what rings when something has happened or is going to
    /// happen earlier than it was.
    void tell(int deviceNo, std::shared_ptr<Bell> bell);

    int deviceNo() const { return diary_.device(); }

    /// Guards the board.
    class Lock
    {
    public:
        explicit Lock(VirtualBoard &board) : board_(board), held_(board.mutex_) {}
        Lock(const Lock &) = delete;
        Lock &operator=(const Lock &) = delete;
        /// Whatever was done in between is written down.
        ~Lock() { board_.settle(); }

    private:
        VirtualBoard &board_;
        std::unique_lock<std::mutex> held_;
    };
    [[nodiscard]] Lock lock() { return Lock(*this); }
    /// For a mere look and for an exchange, at whose end everything is written down anyway.
    [[nodiscard]] std::unique_lock<std::mutex> lockOnly() { return std::unique_lock(mutex_); }
    /// Held by the driver over a whole exchange, a slow one's waiting included, so that callers take turns while
    /// lock() stays free; always taken before it.
    [[nodiscard]] std::unique_lock<std::mutex> turn() { return std::unique_lock(turn_); }

private:
    template <class Kind>
    Kind &settled(Kind &part)
    {
        timeline_.settle();
        return part;
    }
    void settle();
    void noteChanges();
    void noteExchange(const PendingExchange &pending);
    Reply answerOf(unsigned char code, int pipe, Payload payload);
    void work(PendingExchange &pending, Payload payload, const std::optional<Fault> &fault);

    Model model_;
    bool highSpeed_ = false;
    bool plugged_ = true;
    std::uint64_t generation_ = 1;
    std::mutex mutex_;
    std::mutex turn_;
    Timeline timeline_;
    Diary diary_;
    Snapshot lastSnapshot_;
    std::shared_ptr<Bell> bell_;
    std::uint64_t toldOf_ = 0;                  // the last event for which the bell rang
    std::optional<Nanoseconds> toldWhatsNext_;  // and when the next thing was due
    Firmware firmware_;
    SRAM sram_;
    Inputs inputs_;
    Outputs outputs_;
    PulsedOutputs pulsedOutputs_;
    PulsedInputs pulsedInputs_;
    Hoppers hoppers_;
    Reels reels_;
    Recorder recorder_;
    Diagnostics diagnostics_;
    EEPROM eeprom_;
    SPI spi_;
    Battery battery_;
    RealTimeClock clock_;
    SecuritySwitches switches_;
    RandomGenerator random_;
    Identity identity_;
    std::array<std::unique_ptr<SerialPort>, 2> serialPorts_;
    std::vector<Part *> parts_;  // all but the serial ports
    Faults faults_;
    std::deque<Exchange> exchanges_;
    std::uint64_t exchangeCount_ = 0;
    std::function<void()> powerLossListener_;
    Script script_;
};

}  // namespace sim

#endif
