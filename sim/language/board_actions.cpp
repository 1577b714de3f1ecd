// What commands do to a board's parts.
#include "sim/language/actions.h"
#include "sim/language/state_json.h"
#include "sim/language/state_text.h"

#include <ctime>

namespace sim
{

namespace
{

std::vector<NumberedState> statesOf(VirtualBoards &boards, const std::vector<int> &numbers)
{
    std::vector<NumberedState> states;
    for (const int number : numbers) {
        const std::shared_ptr<VirtualBoard> board = boards.hold(number);
        const auto lock = board->lock();
        states.push_back({number, board->state()});
    }
    return states;
}

}  // namespace

void setInput(VirtualBoard &board, const Reading &reading)
{
    const Value &input = reading["PART"];
    board.inputs().set(input.number, reading.is("on") != isActiveLow(input));
}

void pulseInput(VirtualBoard &board, const Reading &reading)
{
    const Value &input = reading["PART"];
    board.inputs().pulse(input.number, reading.numberOr("COUNT", 1), !isActiveLow(input));
}

Outcome insertCoin(VirtualBoard &board, const Reading &reading)
{
    const Value &coin = reading["COIN"];
    if (coin.isName() && coin.part->kind == cabinet::Kind::Coin) {
        board.pulseCoin(coin.number);
        return {};
    }
    return {.text = board.insertCoin(coin.number) ? "" : "coin " + coin.word + " is rejected\n"};
}

void stockHopper(VirtualBoard &board, const Reading &reading)
{
    board.hoppers().at(reading["PART"].number).stock(reading["COINS"].number);
}

void jamHopper(VirtualBoard &board, const Reading &reading)
{
    const unsigned int input = reading["PART"].number;
    if (board.hoppers().all().count(input) == 0)
        throw UsageError("no hopper hangs on input " + std::to_string(input) + "; hang one there with: hopper " +
                         std::to_string(input) + " stock COINS");
    board.hoppers().at(input).jam(reading.is("jam"));
}

void turnSwitch(VirtualBoard &board, const Reading &reading)
{
    const unsigned int number = reading.numberOr("PART", 0);
    if (reading.is("open"))
        board.switches().open(number);
    else
        board.switches().close(number);
}

void changeBattery(VirtualBoard &board, const Reading &reading)
{
    if (reading.is("fail"))
        board.battery().fail();
    else
        board.battery().replace();
}

void setClock(VirtualBoard &board, const Reading &reading)
{
    const auto now = static_cast<unsigned int>(std::time(nullptr));
    board.clock().set(reading.numberOr("SECONDS", now));
}

void failClock(VirtualBoard &board, const Reading &)
{
    board.clock().fail();
}

void sendSerial(VirtualBoard &board, const Reading &reading)
{
    board.serialPort(reading["PORT"].number).deliver(reading["\"TEXT\""].bytes);
}

void spoilParity(VirtualBoard &board, const Reading &reading)
{
    board.serialPort(reading["PORT"].number).spoilParity(reading.numberOr("WORDS", 1));
}

void replySPI(VirtualBoard &board, const Reading &reading)
{
    Bytes bytes;
    for (const Value &byte : reading.all("BYTE"))
        bytes.push_back(static_cast<unsigned char>(byte.number));
    board.spi().reply(bytes);
}

void unplug(VirtualBoard &board, const Reading &)
{
    board.unplug();
}

void plug(VirtualBoard &board, const Reading &)
{
    board.plug();
}

Outcome tellState(Call &call)
{
    const std::vector<NumberedState> states = statesOf(call.session.boards, call.devices);
    if (call.session.wantsData || call.reading.has("--json"))
        return {.data = jsonOf(states, call.session.cabinet)};
    return {.text = textOf(states)};
}

}  // namespace sim
