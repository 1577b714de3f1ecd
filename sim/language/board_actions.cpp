#include "sim/language/board_actions.h"

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace sim
{

namespace
{

// An action that has nothing to say.
template <class Body>
Action quietly(Body body)
{
    return [body](VirtualBoard &board) {
        body(board);
        return std::string();
    };
}

Action input(Arguments &arguments)
{
    const unsigned int number = arguments.number("an input", 0, inputCount - 1);
    const std::string what = arguments.take();
    if (what == "on" || what == "off")
        return quietly([number, what](VirtualBoard &board) { board.inputs().set(number, what == "on"); });
    if (what != "pulse")
        refuse(what, "input state", {"on", "off", "pulse"});
    const unsigned int count = arguments.numberOr(1, "a number of pulses", 1, 65535);
    return quietly([number, count](VirtualBoard &board) { board.inputs().pulse(number, count); });
}

Action coin(Arguments &arguments)
{
    const unsigned int number = arguments.number("a coin", 0, inputCount - 1);
    return [number](VirtualBoard &board) {
        return board.insertCoin(number) ? std::string() : "coin " + std::to_string(number) + " is rejected\n";
    };
}

Action hopper(Arguments &arguments)
{
    const unsigned int number = arguments.number("a hopper's input", 0, inputCount - 1);
    const std::string what = arguments.take();
    if (what == "jam" || what == "free")
        return quietly([number, what](VirtualBoard &board) {
            if (board.hoppers().all().count(number) == 0)
                throw UsageError("no hopper hangs on input " + std::to_string(number) +
                                 "; hang one there with: hopper " + std::to_string(number) + " stock COINS");
            board.hoppers().at(number).jam(what == "jam");
        });
    if (what != "stock")
        refuse(what, "hopper state", {"stock COINS", "jam", "free"});
    const unsigned int coins = arguments.number("a stock of coins", 0, 65535);
    return quietly([number, coins](VirtualBoard &board) { board.hoppers().at(number).stock(coins); });
}

Action securitySwitch(Arguments &arguments)
{
    const unsigned int number = arguments.numberOr(0, "a switch", 0, switchCount - 1);
    const std::string what = arguments.take();
    if (what != "open" && what != "close")
        refuse(what, "switch state", {"open", "close"});
    return quietly([number, what](VirtualBoard &board) {
        if (what == "open")
            board.switches().open(number);
        else
            board.switches().close(number);
    });
}

Action battery(Arguments &arguments)
{
    const std::string what = arguments.take();
    if (what == "fail")
        return quietly([](VirtualBoard &board) { board.battery().fail(); });
    if (what != "replace")
        refuse(what, "battery state", {"fail", "replace"});
    return quietly([](VirtualBoard &board) { board.battery().replace(); });
}

Action clock(Arguments &arguments)
{
    const std::string what = arguments.take();
    if (what == "fail")
        return quietly([](VirtualBoard &board) { board.clock().fail(); });
    if (what != "set")
        refuse(what, "clock action", {"set [SECONDS]", "fail"});
    if (!arguments.any())
        return quietly([](VirtualBoard &board) { board.clock().set(static_cast<std::uint32_t>(std::time(nullptr))); });
    const unsigned int seconds = arguments.number("a time in seconds", 0, 0xFFFFFFFF);
    return quietly([seconds](VirtualBoard &board) { board.clock().set(seconds); });
}

Action serial(Arguments &arguments)
{
    const unsigned int port = arguments.number("a serial port", 0, 1);
    const std::string what = arguments.take();
    if (what == "parity") {
        const unsigned int words = arguments.numberOr(1, "a number of words", 1, 65535);
        return quietly([port, words](VirtualBoard &board) { board.serialPort(port).spoilParity(words); });
    }
    if (what != "send")
        refuse(what, "serial action", {"send \"TEXT\"", "parity [WORDS]"});
    const Bytes bytes = bytesOfText(arguments.take());
    if (bytes.empty())
        throw UsageError("nothing to send; allowed is a text, with \\n, \\r, \\t, \\\\ and \\xHH");
    return quietly([port, bytes](VirtualBoard &board) { board.serialPort(port).deliver(bytes); });
}

Action spi(Arguments &arguments)
{
    if (const std::string what = arguments.take(); what != "reply")
        refuse(what, "SPI action", {"reply BYTE..."});
    Bytes bytes;
    while (arguments.any())
        bytes.push_back(static_cast<unsigned char>(arguments.number("a byte", 0, 255)));
    if (bytes.empty())
        throw UsageError("no bytes; allowed are numbers from 0 to 255");
    return quietly([bytes](VirtualBoard &board) { board.spi().reply(bytes); });
}

using FaultOf = std::function<Fault(Model)>;

// An R20's transfer counts the echo and the status, too, and may come to less than these two.
Fault shortFault(Model model, std::optional<unsigned int> bytes)
{
    if (model != Model::R20)
        return Fault::shortAnswer(bytes.value_or(0));
    const unsigned int count = bytes.value_or(1);
    return count < 2 ? Fault::packetCount(count) : Fault::shortAnswer(count - 2);
}

Fault echoFault(Model model, unsigned char code)
{
    if (model != Model::R20)
        throw UsageError("only an R20 echoes; allowed on this board: ioctl, status, short");
    return Fault::echo(code);
}

FaultOf faultFrom(Arguments &arguments)
{
    const std::string what = arguments.take();
    if (what == "ioctl") {
        const auto error = static_cast<int>(arguments.numberOr(EIO, "an error number", 1, 133));
        if (error == ENOSYS)
            throw UsageError(
                "38 reaches no program, the kernel turns it into 25; allowed are the others from 1 to 133");
        return [error](Model) { return Fault::ioctlFails(error); };
    }
    if (what == "status") {
        const unsigned int status = arguments.number("a status", 1, 0xFFFFFFFF);
        return [status](Model model) {
            if (model == Model::R20 && status > 0xFF)
                throw UsageError("an R20 has statuses of one byte: allowed are 1 to 255");
            return Fault::status(status);
        };
    }
    if (what == "short") {
        const bool given = arguments.any();
        const unsigned int bytes = arguments.numberOr(UINT32_MAX, "a number of bytes", 0, 256);
        const std::optional<unsigned int> count = given && bytes != UINT32_MAX ? std::optional(bytes) : std::nullopt;
        return [count](Model model) { return shortFault(model, count); };
    }
    if (what != "echo")
        refuse(what, "fault", {"ioctl [ERRNO]", "status STATUS", "short [BYTES]", "echo [CODE]", "off"});
    // No board understands request 0, so it is never the right one.
    const auto code = static_cast<unsigned char>(arguments.numberOr(0, "a request code", 0, 255));
    return [code](Model model) { return echoFault(model, code); };
}

Action failNext(Arguments &arguments)
{
    if (arguments.takeIf("off"))
        return quietly([](VirtualBoard &board) { board.faults().clear(); });
    const FaultOf faultOf = faultFrom(arguments);
    unsigned int count = 1;
    unsigned char request = 0;
    TextWords seen;
    while (arguments.any()) {
        const std::string what = arguments.take();
        if (std::find(seen.begin(), seen.end(), what) != seen.end())
            throw UsageError("\"" + what + "\" stands there twice; allowed is once");
        seen.push_back(what);
        if (what == "count")
            count = arguments.number("a number of exchanges", 1, 1000000);
        else if (what == "request")
            request = static_cast<unsigned char>(arguments.number("a request code", 1, 255));
        else
            refuse(what, "restriction", {"count N", "request CODE"});
    }
    return quietly([faultOf, count, request](VirtualBoard &board) {
        board.faults().add(faultOf(board.model()).on(request).times(count));
    });
}

Action unplug(Arguments &)
{
    return quietly([](VirtualBoard &board) { board.unplug(); });
}

Action plug(Arguments &)
{
    return quietly([](VirtualBoard &board) { board.plug(); });
}

Action slow(Arguments &arguments)
{
    const Nanoseconds delay = durationFrom(arguments.take());
    unsigned int count = 0;
    if (arguments.takeIf("count"))
        count = arguments.number("a number of exchanges", 1, 1000000);
    return quietly([delay, count](VirtualBoard &board) {
        board.faults().removeDelays();
        if (delay == Nanoseconds::zero())
            return;
        Fault fault = Fault::slow(delay);
        board.faults().add(count == 0 ? fault.forever() : fault.times(count));
    });
}

}  // namespace

const ActionKind actionKinds[12] = {
    {"input", "input N on|off|pulse [COUNT]", "sets input N, 0 to 32, or lets it pulse, once every 40 ms", input},
    {"coin", "coin N", "throws coin N into the ccTalk acceptor, or else gives a pulse on input N", coin},
    {"hopper", "hopper N stock COINS|jam|free", "the hopper whose coins pass input N; stock hangs one there", hopper},
    {"switch", "switch [N] open|close", "security switch N, 0 to 7 (0)", securitySwitch},
    {"battery", "battery fail|replace", "the backup battery", battery},
    {"clock", "clock set [SECONDS]|fail", "the board's clock; without a number the machine's time", clock},
    {"serial", "serial PORT send \"TEXT\"|parity [WORDS]", "lets bytes arrive, or spoils the parity of the next words",
     serial},
    {"spi", "spi reply BYTE...", "the SPI slave's next answer", spi},
    {"fail", "fail ioctl [ERRNO]|status STATUS|short [BYTES]|echo [CODE] [count N] [request CODE], fail off",
     "the next N exchanges (1), of this request only, fail so; short is the received bytes, on an R20 with its two "
     "leading ones, echo is the R20's only; off ends all faults",
     failNext},
    {"unplug", "unplug", "pulls the board off", unplug},
    {"plug", "plug", "plugs it in again", plug},
    {"slow", "slow TIME [count N]", "every exchange (or the next N) takes so much longer; 0s ends it", slow},
};

bool Arguments::takeIf(const std::string &word)
{
    if (!any() || words_[next_] != word)
        return false;
    ++next_;
    return true;
}

unsigned int Arguments::number(const std::string &what, unsigned long least, unsigned long most)
{
    return static_cast<unsigned int>(numberFrom(take(), what, least, most));
}

unsigned int Arguments::numberOr(unsigned int otherwise, const std::string &what, unsigned long least,
                                 unsigned long most)
{
    if (!any() || words_[next_].find_first_of("0123456789") != 0)
        return otherwise;
    return number(what, least, most);
}

void Arguments::end() const
{
    if (any())
        throw UsageError("nothing is allowed behind it, but there is \"" + words_[next_] + "\"");
}

}  // namespace sim
