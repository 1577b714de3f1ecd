// The driver behind a peer's boards: they have a blank EEPROM and run a firmware, but where PEER_MODEL names their
// model they have to be given one. Their node is the file of the shared board, so that a lock on it is nobody else's.
#include "tests/processes/peer_driver.h"

#include "board/rbase_shared_implementation/shared_board_state.h"
#include "tests/processes/faulty_calls.h"
#include "tests/processes/shared_board.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace tests
{

const char *const nodeFile = boardPath;

namespace
{

constexpr unsigned char modifyOutputs = 77, onPeriod = 83, offPeriod = 84;
constexpr unsigned char readEEPROM = 5, readSRAM = 70, readBankedSRAM = 116;
constexpr unsigned char endFirmware = 73, firmwareRuns = 74, getInputs = 75, receiveWithTimestamps = 102;

unsigned char lastSent[512];
unsigned long lastLength = 0;
bool runs = false;

const char *modelOfBoards()
{
    return std::getenv("PEER_MODEL");
}

/// Changes the board's outputs, and looks whether the shared patterns have changed alike under the locks of the change.
void obey(const Exchange &exchange)
{
    SharedBoard &board = sharedBoard();
    const unsigned char *sent = exchange.sent;
    if (exchange.request == onPeriod)
        std::copy_n(sent, 5, board.on.begin());
    if (exchange.request == offPeriod)
        std::copy_n(sent, 5, board.off.begin());
    for (SharedBoard::Pattern *pattern : {&board.on, &board.off})
        for (std::size_t k = 0; exchange.request == modifyOutputs && k < pattern->size(); ++k)
            (*pattern)[k] = static_cast<std::uint8_t>(((*pattern)[k] | sent[k]) & ~sent[5 + k]);
    const bool onAlike = std::equal(board.on.begin(), board.on.end(), onPattern(boardDevice).bits);
    const bool offAlike = std::equal(board.off.begin(), board.off.end(), offPattern(boardDevice).bits);
    board.disagreements += !(onAlike || exchange.request == offPeriod) || !(offAlike || exchange.request == onPeriod);
    ++board.changes;
}

/// A batch of two bytes an item; its length depends on where in the stream it begins.
unsigned int nextBatch(unsigned char *bytes)
{
    std::atomic<std::uint32_t> &next = sharedBoard().nextItem;
    const std::uint32_t first = next.load();
    const std::uint32_t items = 1 + first % 101;
    for (std::uint32_t k = 0; k < items; ++k) {
        bytes[2 * k] = static_cast<unsigned char>((first + k) >> 8);
        bytes[2 * k + 1] = static_cast<unsigned char>(first + k);
    }
    next.store(first + items);  // whoever asks holds the buffers' mutex
    return 2 * items;
}

unsigned int answer(const Exchange &exchange, unsigned char *bytes)
{
    switch (exchange.request) {
    case modifyOutputs:
    case onPeriod:
    case offPeriod:
        obey(exchange);
        return 0;
    case readEEPROM:
    case readSRAM:
    case readBankedSRAM:
        std::memset(bytes, 0xFF, exchange.sent[0]);
        return exchange.sent[0];
    case endFirmware:
        runs = true;
        return 0;
    case firmwareRuns:
        bytes[0] = runs || !modelOfBoards();
        return 1;
    case getInputs:
        std::memset(bytes, 0, 5);
        return 5;
    case receiveWithTimestamps:
        return nextBatch(bytes);
    default:
        return 0;
    }
}

}  // namespace

std::string hex(const unsigned char *bytes, unsigned long count)
{
    std::string text;
    for (; count > 0; --count, ++bytes)
        for (int digit : {*bytes >> 4, *bytes & 15})
            text += "0123456789ABCDEF"[digit];
    return text;
}

std::string lastPayload()
{
    return hex(lastSent, lastLength);
}

const char *attributeText(bool product)
{
    const char *const products[] = {"Sorvane R20 Board\n", "Sorvane R20s Board\n", "Sorvane R35 Board\n"};
    const char *model = modelOfBoards();
    return product ? products[(model ? std::atoi(model) : 3) - 1] : "480\n";
}

bool carryOut(Exchange &exchange)
{
    if (!exchangeArrives(exchange))
        return false;
    exchange.count = exchange.length = answer(exchange, exchange.bytes);
    lastLength = std::min<unsigned long>(exchange.sentLength, sizeof lastSent);
    std::copy_n(exchange.sent, lastLength, lastSent);
    return true;
}

}  // namespace tests
