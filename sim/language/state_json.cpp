#include "sim/language/state_json.h"

#include "sim/board/inputs.h"
#include "sim/board/outputs.h"

#include <nlohmann/json.hpp>

namespace sim
{

namespace
{

using Json = nlohmann::ordered_json;

Json of(const CounterState &counter)
{
    return {{"input", counter.input}, {"count", counter.count}, {"checking", counter.checking}};
}

Json of(const HopperState &hopper, const std::string &name)
{
    return {{"input", hopper.input},
            {"name", name},
            {"output", hopper.output},
            {"stock", hopper.stock},
            {"jammed", hopper.jammed},
            {"asked", hopper.asked},
            {"paid", hopper.paid},
            {"status", hopper.status},
            {"status_text", hopper.statusText}};
}

Json of(const ReelState &reel)
{
    return {{"place", reel.place},   {"count", reel.count},     {"steps_left", reel.stepsLeft},
            {"motion", reel.motion}, {"forward", reel.forward}, {"synchronised", reel.synchronised}};
}

Json of(const SerialPortState &port)
{
    return {
        {"baud_rate", port.baudRate}, {"port_type", port.portType},         {"format", port.format},
        {"nine_bit", port.nineBit},   {"peripheral", port.peripheral},      {"waiting", port.waiting},
        {"sent", port.sent},          {"parity_errors", port.parityErrors}, {"polled_messages", port.polledMessages}};
}

Json of(const Exchange &exchange)
{
    return {{"operation", nameOf(exchange)}, {"request", exchange.request}, {"pipe", exchange.pipe},
            {"sent", exchange.sent},         {"status", exchange.status},   {"received", exchange.received}};
}

template <class Parts>
Json listOf(const Parts &parts)
{
    Json list = Json::array();
    for (const auto &part : parts)
        list.push_back(of(part));
    return list;
}

Json of(const NumberedState &numbered, const cabinet::Cabinet &cabinet)
{
    const BoardState &state = numbered.state;
    const cabinet::Board *board = cabinet.board(numbered.deviceNo);
    Json hoppers = Json::array();
    for (const HopperState &hopper : state.hoppers) {
        const cabinet::Part *part = cabinet.part(numbered.deviceNo, cabinet::Kind::Hopper, hopper.input);
        hoppers.push_back(of(hopper, part ? part->name : ""));
    }
    return {{"device", numbered.deviceNo},
            {"name", board ? board->name : std::string()},
            {"model", nameOf(state.model)},
            {"plugged", state.plugged},
            {"speed", state.highSpeed ? "high" : "full"},
            {"board_number", state.boardNumber},
            {"firmware_running", state.firmwareRunning},
            {"outputs_on_period", numbersOf(state.outputsOnPeriod, outputCount)},
            {"outputs_off_period", numbersOf(state.outputsOffPeriod, outputCount)},
            {"outputs_lit", numbersOf(state.outputsLit, outputCount)},
            {"in_on_period", state.inOnPeriod},
            {"brightness", state.brightness},
            {"inputs", numbersOf(state.inputs, inputCount)},
            {"multiplexing", state.multiplexing},
            {"counters", listOf(state.counters)},
            {"hoppers", hoppers},
            {"reels", listOf(state.reels)},
            {"serial_ports", listOf(state.serialPorts)},
            {"eeprom", state.eepromType},
            {"eeprom_configured", state.eepromConfigured},
            {"spi_enabled", state.spiEnabled},
            {"random_enabled", state.randomEnabled},
            {"recorder", state.recorder},
            {"clock", state.clock},
            {"battery_good", state.batteryGood},
            {"open_switches", numbersOf(Pattern{static_cast<unsigned char>(state.switches)}, 8)},
            {"switch_log_length", state.switchLogLength},
            {"pending_faults", state.pendingFaults},
            {"exchange_count", state.exchangeCount},
            {"last_exchanges", listOf(state.lastExchanges)}};
}

}  // namespace

std::string jsonOf(const std::vector<NumberedState> &states, const cabinet::Cabinet &cabinet)
{
    Json boards = Json::array();
    for (const NumberedState &state : states)
        boards.push_back(of(state, cabinet));
    return Json{{"boards", boards}}.dump();
}

}  // namespace sim
