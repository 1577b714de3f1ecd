#include "tools/serial_line.h"

#include "tools/failure.h"

#include <CLI/CLI.hpp>

namespace tools
{

namespace
{

std::string ratesOf(const Board &board, int port)
{
    std::string list;
    const protocol::Operation *operation = protocol::findOperation(board.model(), "SetConfig", port);
    for (const protocol::Field &field : operation->payload) {
        for (protocol::Codes code = field.codes; code && code->meaning; ++code)
            list += (list.empty() ? "" : ", ") + std::to_string(code->meaning);
    }
    return list;
}

}  // namespace

LineFormat LineFormat::from(const std::string &word, const Board &board, int port)
{
    LineFormat format;
    struct {
        std::uint32_t &value;
        std::uint32_t most;
    } const fields[] = {
        {format.baudRate, 65535}, {format.type, 3}, {format.format, 3}, {format.options2to3, 3}, {format.option1, 1}};
    const std::vector<std::string> words = CLI::detail::split(word, ',');
    bool right = words.size() <= std::size(fields);
    for (std::size_t n = 0; right && n < words.size(); ++n)
        right = CLI::detail::lexical_cast(words[n], fields[n].value) && fields[n].value <= fields[n].most;
    const std::string rates = ratesOf(board, port);
    right = right && (", " + rates + ",").find(", " + std::to_string(format.baudRate) + ",") != std::string::npos;
    if (!right)
        throw UsageError("--format " + word +
                         ": allowed: BAUD[,TYPE[,FORMAT[,OPTIONS2TO3[,OPTION1]]]] with a BAUD of " + rates +
                         ", then 0 to 3 three times, then 0 or 1");
    return format;
}

void SerialLine::configure(const LineFormat &format)
{
    board_.ask("SetConfig",
               {{"type", format.type},
                {"format", format.format},
                {"options2to3", format.options2to3},
                {"option1", format.option1},
                {"baudRate", format.baudRate}},
               port_);
}

void SerialLine::send(std::string_view bytes)
{
    const std::size_t most = board_.node().isHighSpeed() ? 252 : 60;
    for (std::size_t done = 0; done < bytes.size(); done += most)
        board_.ask("Send", {{"data", std::string(bytes.substr(done, most))}}, port_);
}

std::string SerialLine::receive()
{
    constexpr int mostAnswers = 16;
    std::string all;
    for (int answers = 0; answers < mostAnswers; ++answers) {
        const std::string bytes = board_.ask("Receive", {{"messageId", messageId_++}}, port_).bytes("data");
        if (bytes.empty())
            break;
        all += bytes;
    }
    return all;
}

std::string SerialLine::receiveBatch()
{
    return board_.ask("ReceiveByteWithTimestamp", {}, port_).bytes("batch");
}

}  // namespace tools
