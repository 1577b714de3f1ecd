#include "sim/language/state_text.h"

#include "board/requests.h"
#include "sim/board/inputs.h"
#include "sim/board/outputs.h"

#include <iomanip>
#include <sstream>

namespace sim
{

namespace
{

using Lines = std::ostringstream;

std::string listOf(const std::vector<unsigned int> &numbers)
{
    std::string list;
    for (const unsigned int number : numbers)
        list += (list.empty() ? "" : " ") + std::to_string(number);
    return list.empty() ? "none" : list;
}

std::ostream &line(Lines &lines, const std::string &name)
{
    return lines << "  " << std::left << std::setw(10) << name;
}

void showBoard(Lines &lines, const NumberedState &numbered)
{
    const BoardState &state = numbered.state;
    lines << "Vexa_" << numbered.deviceNo << "  " << nameOf(state.model) << ", " << (state.highSpeed ? "high" : "full")
          << " speed, board number " << state.boardNumber << ", " << (state.plugged ? "plugged" : "unplugged") << "\n";
    line(lines, "firmware") << (state.firmwareRunning ? "running" : "missing") << "\n";
    line(lines, "eeprom") << state.eepromType << (state.eepromConfigured ? ", configured" : ", not configured") << "\n";
}

// Of both patterns: steady; of one: flashing, in step with its period.
void showOutputs(Lines &lines, const BoardState &state)
{
    std::vector<unsigned int> steady, withOn, withOff;
    for (unsigned int output = 0; output < outputCount; ++output) {
        const bool on = holds(state.outputsOnPeriod, output);
        const bool off = holds(state.outputsOffPeriod, output);
        if (on && off)
            steady.push_back(output);
        else if (on)
            withOn.push_back(output);
        else if (off)
            withOff.push_back(output);
    }
    line(lines, "outputs") << "steady " << listOf(steady) << "; flashing in the on period " << listOf(withOn)
                           << ", in the off period " << listOf(withOff) << "\n";
    line(lines, "lit now") << listOf(numbersOf(state.outputsLit, outputCount)) << " ("
                           << (state.inOnPeriod ? "on" : "off") << " period, brightness " << state.brightness << ")\n";
}

void showInputs(Lines &lines, const BoardState &state)
{
    line(lines, "inputs") << listOf(numbersOf(state.inputs, inputCount)) << (state.multiplexing ? ", multiplexing" : "")
                          << "\n";
    for (const CounterState &counter : state.counters)
        line(lines, "counter") << "input " << counter.input << ": " << counter.count
                               << (counter.checking ? ", checking" : "") << "\n";
    for (const HopperState &hopper : state.hoppers)
        line(lines, "hopper") << "input " << hopper.input << ": stock " << hopper.stock
                              << (hopper.jammed ? ", jammed" : "") << ", " << hopper.statusText << ", paid "
                              << hopper.paid << " of " << hopper.asked << " by output " << hopper.output << "\n";
}

void showReels(Lines &lines, const BoardState &state)
{
    for (std::size_t reel = 0; reel < state.reels.size(); ++reel) {
        const ReelState &r = state.reels[reel];
        line(lines, "reel") << reel << ": place " << r.place << ", count " << r.count << ", " << r.motion
                            << (r.forward ? "" : " backward") << ", " << r.stepsLeft << " steps left"
                            << (r.synchronised ? ", synchronised" : "") << "\n";
    }
}

void showSerialPorts(Lines &lines, const BoardState &state)
{
    for (std::size_t port = 0; port < state.serialPorts.size(); ++port) {
        const SerialPortState &p = state.serialPorts[port];
        line(lines, "serial") << port << ": " << p.baudRate << " baud, type " << p.portType
                              << (p.nineBit ? ", 9-bit" : "") << ", "
                              << (p.peripheral.empty() ? "nothing connected" : p.peripheral) << ", waiting "
                              << p.waiting << ", sent " << p.sent << ", parity errors " << p.parityErrors << "\n";
    }
}

void showRest(Lines &lines, const BoardState &state)
{
    std::vector<unsigned int> open;
    for (unsigned int number = 0; number < 8; ++number) {
        if (state.switches >> number & 1U)
            open.push_back(number);
    }
    line(lines, "security") << "open switches " << listOf(open) << ", " << state.switchLogLength
                            << " in the log, battery " << (state.batteryGood ? "good" : "failed") << ", clock "
                            << state.clock << "\n";
    line(lines, "others") << "spi " << (state.spiEnabled ? "on" : "off") << ", random numbers "
                          << (state.randomEnabled ? "on" : "off") << ", recorder " << state.recorder << "\n";
    line(lines, "exchanges") << state.exchangeCount << ", faults waiting " << state.pendingFaults << "\n";
    for (const Exchange &exchange : state.lastExchanges) {
        lines << "    " << std::left << std::setw(36) << nameOf(exchange) << exchange.sent.size() << " sent, ";
        if (exchange.status == 0)
            lines << exchange.received.size() << " received\n";
        else
            lines << "status " << exchange.status << "\n";
    }
}

}  // namespace

std::vector<unsigned int> numbersOf(const Pattern &pattern, unsigned int count)
{
    std::vector<unsigned int> numbers;
    for (unsigned int number = 0; number < count; ++number) {
        if (holds(pattern, number))
            numbers.push_back(number);
    }
    return numbers;
}

std::string nameOf(const Exchange &exchange)
{
    const char *name = nameOfRequest(exchange.request, exchange.pipe);
    return name ? name : "request " + std::to_string(exchange.request) + " on pipe " + std::to_string(exchange.pipe);
}

std::string textOf(const std::vector<NumberedState> &states)
{
    Lines lines;
    for (const NumberedState &numbered : states) {
        showBoard(lines, numbered);
        showOutputs(lines, numbered.state);
        showInputs(lines, numbered.state);
        showReels(lines, numbered.state);
        showSerialPorts(lines, numbered.state);
        showRest(lines, numbered.state);
    }
    return lines.str();
}

}  // namespace sim
