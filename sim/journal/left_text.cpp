#include "sim/journal/left_text.h"

#include "sim/cabinet/event_names.h"

namespace sim
{

namespace
{

class LeftText
{
public:
    LeftText(VirtualBoard &board, int deviceNo, const cabinet::Cabinet &cabinet)
        : board_(board), deviceNo_(deviceNo), cabinet_(cabinet), names_(cabinet::eventNames(cabinet))
    {
    }

    std::string text()
    {
        add(std::string(board_.plugged() ? "" : "unplugged, ") + "firmware " +
            (board_.firmware().running() ? "running" : "missing"));
        add("outputs" + outputs());
        add("inputs on" + inputs());
        hoppers();
        meters();
        if (const std::size_t waiting = board_.faults().size(); waiting > 0)
            add("faults waiting: " + std::to_string(waiting));
        return text_;
    }

private:
    void add(const std::string &line) { text_ += "    " + line + "\n"; }

    journal::Event about(journal::Kind kind, unsigned int number) const
    {
        journal::Event event;
        event.device = deviceNo_;
        event.kind = kind;
        event.part = number;
        return event;
    }

    std::string named(journal::Kind kind, unsigned int number) const
    {
        const std::string name = names_.part(about(kind, number));
        return name.empty() ? std::to_string(number) : name + " (" + std::to_string(number) + ")";
    }

    std::string outputs()
    {
        std::string on;
        std::string flashing;
        for (unsigned int output = 0; output < outputCount; ++output) {
            const bool inOn = holds(board_.outputs().onPattern(), output);
            const bool inOff = holds(board_.outputs().offPattern(), output);
            if (inOn || inOff)
                (inOn && inOff ? on : flashing) += " " + named(journal::Kind::Output, output);
        }
        return " on:" + (on.empty() ? " none" : on) + (flashing.empty() ? "" : "; flashing:" + flashing);
    }

    std::string inputs()
    {
        std::string on;
        for (unsigned int input = 0; input < firstBoardNumberInput; ++input)
            on += board_.inputs().level(input) != names_.activeLow(about(journal::Kind::Input, input))
                      ? " " + named(journal::Kind::Input, input)
                      : "";
        return ":" + (on.empty() ? " none" : on);
    }

    void hoppers()
    {
        for (const auto &[input, hopper] : board_.hoppers().all()) {
            const Hoppers::Release release = board_.hoppers().release(input);
            add("hopper " + named(journal::Kind::Hopper, input) + ": stock " + std::to_string(hopper.stock()) +
                (hopper.jammed() ? ", jammed" : "") +
                (release.asked > 0 ? ", paid " + std::to_string(release.paid) + " of " + std::to_string(release.asked)
                                   : ""));
        }
    }

    void meters()
    {
        const cabinet::Board *board = cabinet_.board(deviceNo_);
        if (!board)
            return;
        for (const cabinet::Part &part : board->parts) {
            if (part.kind == cabinet::Kind::Meter)
                add("meter " + part.name + " = " + std::to_string(meterValue(board_, part)));
        }
    }

    VirtualBoard &board_;
    int deviceNo_;
    const cabinet::Cabinet &cabinet_;
    journal::Names names_;
    std::string text_;
};

}  // namespace

std::string leftText(VirtualBoard &board, int deviceNo, const cabinet::Cabinet &cabinet)
{
    return LeftText(board, deviceNo, cabinet).text();
}

std::uint64_t meterValue(VirtualBoard &board, const cabinet::Part &meter)
{
    std::uint64_t value = 0;
    for (unsigned int i = 0; i < meter.bytes; ++i) {
        const unsigned int place = meter.bigEndian ? i : meter.bytes - 1 - i;
        value = value << 8 | board.eeprom().at(meter.number + place);
    }
    return value;
}

}  // namespace sim
