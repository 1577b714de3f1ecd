// The words of an exchange: whatever bytes travelled, on whatever pipe, they become one line that leaves no byte out.
#include "protocol/decode.h"
#include "protocol/families.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;

/// Any request at all, or that of one of the rows.
void chooseRequest(fuzz::Input &input, protocol::Exchange &exchange)
{
    exchange.request = input.take<unsigned char>();
    exchange.pipe = static_cast<int>(input.upTo(9)) - 1;
    unsigned int row = input.take<unsigned char>();
    for (const protocol::Family &family : protocol::families()) {
        if (row < family.operations.size()) {
            exchange.request = family.operations[row].request;
            exchange.pipe = family.operations[row].pipes.last;
            return;
        }
        row -= static_cast<unsigned int>(family.operations.size());
    }
}

Bytes takeBytes(fuzz::Input &input)
{
    Bytes bytes(input.upTo(600));
    input.fill(bytes.data(), bytes.size());
    return bytes;
}

std::string lineOf(protocol::Exchange exchange, const Bytes &payload, const Bytes &answer)
{
    exchange.payload = payload;
    exchange.answer = answer;
    return line(decode(exchange));
}

/// Changes one byte, if there is one.
bool change(fuzz::Input &input, Bytes &bytes)
{
    if (bytes.empty())
        return false;
    bytes[input.upTo(static_cast<unsigned int>(bytes.size()) - 1)] ^= static_cast<unsigned char>(1 << input.upTo(7));
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    protocol::Exchange exchange = {};
    exchange.model = static_cast<protocol::Model>(1 + input.upTo(2));
    exchange.outcome = static_cast<protocol::Outcome>(input.upTo(2));
    exchange.status = input.take<int>();
    chooseRequest(input, exchange);
    Bytes payload = takeBytes(input);
    Bytes answer = takeBytes(input);

    const std::string told = lineOf(exchange, payload, answer);
    fuzz::require(std::all_of(told.begin(), told.end(), [](char c) { return ' ' <= c && c <= '~'; }),
                  "one line of printable characters");
    if (change(input, payload))
        fuzz::require(lineOf(exchange, payload, answer) != told, "another payload is another line");
    const std::string toldThen = lineOf(exchange, payload, answer);
    if (change(input, answer) && exchange.outcome == protocol::Outcome::Success)
        fuzz::require(lineOf(exchange, payload, answer) != toldThen, "another answer is another line");
    return 0;
}
