// A serial port as a terminal: what is typed goes out, what comes in is shown. On a pipe, what is read goes out, and
// the command ends when nothing has come back for a while.
#include "tools/failure.h"
#include "tools/gate.h"
#include "tools/print.h"
#include "tools/serial_line.h"
#include "tools/stop_signals.h"
#include "tools/terminal.h"

#include <CLI/CLI.hpp>
#include <poll.h>

namespace tools
{

namespace
{

constexpr std::chrono::milliseconds betweenTwoReceptions(20);
constexpr char endKey = 0x1D;  // Ctrl-]

struct SerialOptions {
    std::string board, port, format;
    bool hex = false, timestamps = false;
    unsigned int waitMs = 500;
    Consent consent;
};

void show(const std::string &bytes, const SerialOptions &options, const Settings &settings)
{
    if (settings.json)
        printLine({{"time", timeOfDay()}, {options.timestamps ? "batch" : "received", hexadecimal(bytes)}});
    else if (options.timestamps)
        for (std::size_t n = 0; n + 1 < bytes.size(); n += 2)
            say("%3u  %02X\n", static_cast<unsigned char>(bytes[n + 1]), static_cast<unsigned char>(bytes[n]));
    else if (options.hex)
        say("%s\n", hexadecimal(bytes).c_str());
    else
        std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
}

/// What was typed. `ended`: nothing more will be.
std::string typed(bool isTerminal, bool &ended)
{
    char buffer[256];
    const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
    ended = count <= 0;
    std::string bytes(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
    if (const std::size_t end = bytes.find(endKey); isTerminal && end != std::string::npos) {
        ended = true;
        bytes.resize(end);
    }
    return bytes;
}

bool inputWaits()
{
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, 0) > 0;
}

void talk(SerialLine &line, const SerialOptions &options, const Settings &settings)
{
    using Clock = std::chrono::steady_clock;
    StopSignals signals;
    const UnbufferedTerminal terminal;
    bool inputEnded = false;
    Clock::time_point last = Clock::now();
    const std::chrono::milliseconds patience(terminal ? 0 : options.waitMs);
    while (!signals.wait(betweenTwoReceptions, inputEnded ? -1 : STDIN_FILENO)) {
        if (!inputEnded && inputWaits()) {
            line.send(typed(static_cast<bool>(terminal), inputEnded));
            last = Clock::now();
        }
        const std::string bytes = options.timestamps ? line.receiveBatch() : line.receive();
        // A batch of one byte is the time alone.
        if (bytes.size() > (options.timestamps ? 1U : 0U)) {
            show(bytes, options, settings);
            last = Clock::now();
        } else if (inputEnded && Clock::now() - last >= patience) {
            return;
        }
    }
}

int serial(const SerialOptions &options, const Settings &settings)
{
    Board board(settings, options.board);
    const cabinet::Place place = board.part({cabinet::Kind::Serial}, options.port, 1);
    const int port = static_cast<int>(place.number);
    const LineFormat format = LineFormat::from(options.format, board, port);
    board.needFirmware();
    options.consent.obtain(board, "set serial port " + options.port + " to " + options.format +
                                      ", send on it and take what comes");
    SerialLine line(board, port);
    line.configure(format);
    if (settings.json)
        print({{"board", board.device()}, {"port", port}, {"format", options.format}});
    else if (::isatty(STDIN_FILENO))
        std::fprintf(stderr, "Serial port %d of %s at %u bit/s; Ctrl-] ends\n", port, board.title().c_str(),
                     format.baudRate);
    talk(line, options, settings);
    return 0;
}

}  // namespace

Command::Action declareSerial(CLI::App &command)
{
    auto options = std::make_shared<SerialOptions>();
    command.add_option("BOARD", options->board, boardHelp)->required();
    command.add_option("PORT", options->port, "0, 1, or its name")->required();
    command
        .add_option("--format", options->format,
                    "BAUD[,TYPE[,FORMAT[,OPTIONS2TO3[,OPTION1]]]], the numbers that travel (docs/wire.md, SetConfig)")
        ->required();
    command.add_flag("--hex", options->hex, "what comes is shown as bytes");
    command.add_flag("--timestamps", options->timestamps,
                     "the board's timestamp of each byte in front of it; its unit is the firmware's");
    command
        .add_option("--wait", options->waitMs, "where there is no terminal: milliseconds of silence after which to end")
        ->capture_default_str();
    options->consent.addTo(command);
    return [options](const Settings &settings) { return serial(*options, settings); };
}

}  // namespace tools
