#include "tests/fuzz/fuzz_driver.h"

#include "board/rbase_shared_implementation/shared_board_state.h"
#include "tests/support/board_calls.h"

namespace fuzz
{

constinit Driver driver;

void openBoard(SorvaneUSB &board, int deviceNo)
{
    onPattern(deviceNo) = {};
    offPattern(deviceNo) = {};
    eepromEntry(deviceNo) = {};
    receiveBuffer(deviceNo) = {};
    require(!board.InitPort(16), "no table has an entry for a board behind number 16");
    board.InitPort(deviceNo);
    unsigned char type;
    require(board.GetFittedBoard(&type) == (driver.model % 4 && driver.speed % 3),
            "what can be read of a board opens it");
    driver.exchanges = 0;
}

namespace
{

void readAll(const unsigned char *payload, unsigned long length)
{
    static volatile unsigned char seen;
    for (unsigned long k = 0; k < length; ++k)
        seen = payload[k];
    static_cast<void>(seen);
    driver.sentBytes = length;
}

}  // namespace

}  // namespace fuzz

namespace tests
{

using fuzz::driver;

const char *const nodeFile = "/dev/null";

const char *attributeText(bool product)
{
    const char *const products[] = {"\xFF\n", "Sorvane R20 Board\n", "Sorvane R20s Board\n", "Sorvane R35 Board"};
    const char *const speeds[] = {nullptr, "12\n", "480\n"};
    return product ? products[driver.model % 4] : speeds[driver.speed % 3];
}

bool callFails(const char *)
{
    return false;
}

/// Each bit of the first byte makes one thing wrong, so that most exchanges go well.
bool carryOut(Exchange &exchange)
{
    ++driver.exchanges;
    fuzz::readAll(exchange.sent, exchange.sentLength);
    fuzz::Input &input = *driver.input;
    const bool endless = input.ended();
    const unsigned int flags = input.take<std::uint8_t>();
    exchange.result = (flags & 7) == 7 ? -1 : (flags & 7) == 6 ? 1 : 0;
    exchange.status = flags & 8 ? input.take<std::int32_t>() : 0;
    exchange.wrongEcho = (flags & 16) != 0;
    unsigned int length = endless      ? driver.endlessBytes
                          : flags & 32 ? unsigned{sizeof exchange.bytes}
                                       : input.take<std::uint8_t>();
    std::memset(exchange.bytes, 1, sizeof exchange.bytes);
    if (driver.answersLeft == 0)
        length = 0;
    else if (length > driver.bytesWithoutData)
        --driver.answersLeft;
    if (!endless)
        input.fill(exchange.bytes, length);
    if (driver.answersLeft == 0)
        exchange.bytes[1] = 0;  // no part follows
    exchange.length = length;
    exchange.count = flags & 64 && !driver.truthful ? input.take<unsigned long>() : length;
    return true;
}

}  // namespace tests
