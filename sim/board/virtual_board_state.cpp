// How a board gathers its state.
#include "sim/board/virtual_board.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr std::size_t exchangesShown = 8;

const char *textOf(Reel::Motion motion)
{
    constexpr const char *texts[] = {"still", "ramping up", "running", "ramping down"};
    return texts[static_cast<int>(motion)];
}

const char *textOf(Recorder::State state)
{
    constexpr const char *texts[] = {"not configured", "configured", "recording", "complete"};
    return texts[static_cast<int>(state)];
}

const char *textOfHopper(unsigned char status)
{
    constexpr const char *texts[] = {"idle", "paid", "ran out", "stopped", "active"};
    return texts[status];
}

std::vector<CounterState> countersOf(const PulsedInputs &inputs)
{
    std::vector<CounterState> counters;
    for (unsigned int input = 0; input < counterCount; ++input) {
        const PulsedInputs::Counter &counter = inputs.counter(input);
        if (counter.checking || counter.count != 0)
            counters.push_back({input, counter.count, counter.checking});
    }
    return counters;
}

std::vector<HopperState> hoppersOf(const Hoppers &hoppers)
{
    std::vector<HopperState> states;
    for (unsigned int input = 0; input < inputCount; ++input) {
        const auto found = hoppers.all().find(input);
        const bool fitted = found != hoppers.all().end();
        const Hoppers::Release release = hoppers.release(input);
        if (!fitted && release.status == hopperIdle)
            continue;
        const unsigned int output = release.status != hopperIdle ? release.output : found->second.motor().value_or(0);
        states.push_back({input, output, fitted ? found->second.stock() : 0, fitted && found->second.jammed(),
                          release.asked, release.paid, release.status, textOfHopper(release.status)});
    }
    return states;
}

ReelState stateOf(const Reel &reel)
{
    return {reel.place(),          reel.count(),   reel.stepsLeft(),   reel.endless(),
            textOf(reel.motion()), reel.forward(), reel.synchronised()};
}

SerialPortState stateOf(const SerialPort &port)
{
    SerialPortState state;
    state.baudRate = port.settings().baudRate;
    state.portType = port.settings().portType;
    state.format = port.settings().format;
    state.nineBit = port.settings().nineBit();
    state.peripheral = port.peripheral() ? port.peripheral()->name() : "";
    state.waiting = port.waiting();
    state.sent = port.sentCount();
    state.parityErrors = port.parityErrors();
    for (unsigned int slot = 0; slot < pollSlotCount; ++slot)
        state.polledMessages[slot] = port.polledHost().slot(slot).answers.size();
    return state;
}

void addOutputs(BoardState &state, const Outputs &outputs)
{
    state.outputsOnPeriod = outputs.onPattern();
    state.outputsOffPeriod = outputs.offPattern();
    state.outputsLit = outputs.litNow();
    state.inOnPeriod = outputs.inOnPeriod();
    state.brightness = outputs.brightness();
}

}  // namespace

BoardState VirtualBoard::state()
{
    timeline_.settle();
    BoardState state;
    state.model = model_;
    state.highSpeed = highSpeed_;
    state.plugged = plugged_;
    state.firmwareRunning = firmware_.running();
    state.boardNumber = inputs_.boardNumber();
    addOutputs(state, outputs_);
    state.inputs = inputs_.levels();
    state.multiplexing = inputs_.multiplexing();
    state.counters = countersOf(pulsedInputs_);
    state.hoppers = hoppersOf(hoppers_);
    for (unsigned int reel = 0; reel < state.reels.size(); ++reel)
        state.reels[reel] = stateOf(reels_.at(reel));
    for (unsigned int port = 0; port < state.serialPorts.size(); ++port)
        state.serialPorts[port] = stateOf(*serialPorts_[port]);
    state.eepromType = eeprom_.name();
    state.eepromConfigured = eeprom_.configuration().has_value();
    state.spiEnabled = spi_.enabled();
    state.randomEnabled = random_.enabled();
    state.recorder = textOf(recorder_.state());
    state.clock = clock_.now();
    state.batteryGood = battery_.good();
    state.switches = switches_.levels();
    state.switchLogLength = switches_.log().size();
    state.pendingFaults = faults_.size();
    state.exchangeCount = exchangeCount_;
    const auto shown = static_cast<std::ptrdiff_t>(std::min(exchangesShown, exchanges_.size()));
    state.lastExchanges.assign(exchanges_.end() - shown, exchanges_.end());
    return state;
}

}  // namespace sim
