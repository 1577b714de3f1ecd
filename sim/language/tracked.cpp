#include "sim/language/tracked.h"

#include <algorithm>

namespace sim
{

namespace
{

journal::Aspect aspectOf(const std::string &word)
{
    using journal::Aspect;
    for (const Aspect aspect : {Aspect::Paid, Aspect::Stock, Aspect::Jammed, Aspect::Empty, Aspect::Paying}) {
        if (word == wordFor(aspect))
            return aspect;
    }
    return Aspect::None;
}

std::uint32_t hopperValue(const HopperSnapshot &hopper, journal::Aspect aspect)
{
    switch (aspect) {
    case journal::Aspect::Paid:
        return hopper.paid;
    case journal::Aspect::Stock:
        return hopper.stock;
    case journal::Aspect::Jammed:
        return hopper.jammed;
    case journal::Aspect::Empty:
        return hopper.stock == 0;
    default:
        return hopper.paying;
    }
}

// The end of the flash period in which a moment lies.
Nanoseconds periodEnd(Nanoseconds moment)
{
    return (moment / flashPeriod + 1) * flashPeriod;
}

bool isLitAt(std::uint32_t bits, Nanoseconds moment)
{
    if (bits & (journal::pulsedOn | journal::pulsedOff))
        return (bits & journal::pulsedOn) != 0;
    const bool onPeriod = moment / flashPeriod % 2 == 0;
    return (bits & (journal::drivenByRelease | (onPeriod ? journal::inOnPattern : journal::inOffPattern))) != 0;
}

std::string hexadecimal(const Bytes &bytes)
{
    return journal::hexadecimal(std::string(bytes.begin(), bytes.end()));
}

}  // namespace

Tracked::Tracked(const ConditionReading &condition, VirtualBoard &board)
    : condition_(condition), name_(condition.reading.row().name)
{
    const Reading &reading = condition.reading;
    device_ = board.deviceNo();
    if (name_ == "quiet") {
        kind_ = journal::Kind::Exchange;
    } else if (name_ == "meter") {
        const cabinet::Part *part = reading["PART"].part;
        if (!part)
            throw UsageError("meter: \"" + reading["PART"].word +
                             "\" has no name; allowed is a meter of a cabinet file");
        kind_ = journal::Kind::EEPROM;
        part_ = part->number;
        size_ = part->bytes;
    } else {
        kind_ = *journal::kindFor(name_);
        aspect_ = kind_ == journal::Kind::Hopper ? aspectOf(reading.keyword()) : journal::Aspect::None;
        part_ = reading.has("PART") ? reading["PART"].number : reading.numberOr("ADDRESS", 0);
        size_ = reading.all("BYTE").size();
    }
    if (kind_ == journal::Kind::EEPROM && part_ + size_ > board.eeprom().size())
        throw UsageError(name_ + ": the EEPROM of this board ends at " + std::to_string(board.eeprom().size() - 1));
}

TrackedState Tracked::now(VirtualBoard &board) const
{
    const Snapshot snapshot = board.snapshot();
    TrackedState state;
    state.plugged = snapshot.plugged;
    switch (kind_) {
    case journal::Kind::Output:
        state.value = snapshot.output(part_);
        break;
    case journal::Kind::Input:
        state.value = sim::holds(snapshot.inputs, part_);
        break;
    case journal::Kind::Counter:
        state.value = snapshot.counters.at(part_);
        break;
    case journal::Kind::Hopper:
        state.value = hopperValue(snapshot.hoppers.at(part_), aspect_);
        break;
    case journal::Kind::Reel:
        state.value = snapshot.turning.at(part_);
        break;
    case journal::Kind::EEPROM:
        for (std::size_t i = 0; i < size_; ++i)
            state.bytes.push_back(board.eeprom().at(part_ + i));
        break;
    case journal::Kind::Firmware:
        state.value = snapshot.firmwareRunning;
        break;
    default:
        state.value = snapshot.plugged;
    }
    return state;
}

bool Tracked::isChangedBy(const journal::Event &event) const
{
    if (event.kind == journal::Kind::Plugged)
        return true;
    if (event.kind != kind_)
        return false;
    if (kind_ == journal::Kind::EEPROM)
        return event.part < part_ + size_ && part_ < event.part + event.bytes.size();
    return event.part == part_ && event.aspect == aspect_;
}

// The bytes that the write and this place have in common.
void Tracked::put(const journal::Event &event, const std::string &from, Bytes &bytes) const
{
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t address = part_ + i;
        if (address >= event.part && address - event.part < from.size())
            bytes[i] = static_cast<unsigned char>(from[address - event.part]);
    }
}

void Tracked::undo(const journal::Event &event, TrackedState &state) const
{
    if (event.kind == journal::Kind::Plugged)
        state.plugged = event.was != 0;
    if (event.kind == journal::Kind::EEPROM)
        put(event, event.before, state.bytes);
    else if (event.kind == kind_)
        state.value = event.was;
}

void Tracked::redo(const journal::Event &event, TrackedState &state) const
{
    if (event.kind == journal::Kind::Plugged)
        state.plugged = event.is != 0;
    if (event.kind == journal::Kind::EEPROM)
        put(event, event.bytes, state.bytes);
    else if (event.kind == journal::Kind::Exchange)
        state.lastExchange = event.time;
    else if (event.kind == kind_)
        state.value = event.is;
}

bool Tracked::compares(std::uint64_t value) const
{
    const std::string &how = condition_.reading["="].word;
    const std::uint64_t wanted = condition_.reading["N"].number;
    return how == "="    ? value == wanted
           : how == "!=" ? value != wanted
           : how == "<"  ? value < wanted
           : how == "<=" ? value <= wanted
           : how == ">"  ? value > wanted
                         : value >= wanted;
}

std::uint64_t Tracked::meter(const Bytes &bytes) const
{
    const bool bigEndian = condition_.reading["PART"].part->bigEndian;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        value = value << 8 | bytes[bigEndian ? i : bytes.size() - 1 - i];
    return value;
}

// Of what does not depend on the time.
bool Tracked::isSo(const TrackedState &state) const
{
    const Reading &reading = condition_.reading;
    const bool inOn = (state.value & journal::inOnPattern) != 0;
    const bool inOff = (state.value & journal::inOffPattern) != 0;
    switch (kind_) {
    case journal::Kind::Output:
        return reading.is("flashing") ? inOn != inOff : inOn == reading.is("on") && inOff == reading.is("on");
    case journal::Kind::Input:
        return (state.value != 0) == (reading.is("on") != isActiveLow(reading["PART"]));
    case journal::Kind::Reel:
        return (state.value != 0) == reading.is("turning");
    case journal::Kind::EEPROM: {
        if (name_ == "meter")
            return compares(meter(state.bytes));
        const std::vector<Value> wanted = reading.all("BYTE");
        return std::equal(wanted.begin(), wanted.end(), state.bytes.begin(), state.bytes.end(),
                          [](const Value &value, unsigned char byte) { return value.number == byte; });
    }
    default:
        return reading.has("=") ? compares(state.value) : state.value != 0;
    }
}

bool Tracked::isLit(const TrackedState &state, bool wanted, Nanoseconds first, Nanoseconds last) const
{
    if (isLitAt(state.value, first) == wanted)
        return true;
    return periodEnd(first) <= last && isLitAt(state.value, periodEnd(first)) == wanted;
}

bool Tracked::isQuiet(const TrackedState &state, Nanoseconds first, Nanoseconds last) const
{
    const Nanoseconds wanted = condition_.reading["TIME"].time;
    return condition_.negated ? first - state.lastExchange < wanted : last - state.lastExchange >= wanted;
}

bool Tracked::holds(const TrackedState &state, Nanoseconds first, Nanoseconds last) const
{
    last = std::max(first, last);
    if (!state.plugged)
        return kind_ == journal::Kind::Plugged && condition_.negated;
    if (name_ == "quiet")
        return isQuiet(state, first, last);
    if (condition_.reading.is("lit"))
        return isLit(state, !condition_.negated, first, last);
    return isSo(state) != condition_.negated;
}

std::optional<Nanoseconds> Tracked::mayHoldAt(const TrackedState &state, Nanoseconds now) const
{
    if (name_ == "quiet")
        return state.lastExchange + condition_.reading["TIME"].time;
    if (condition_.reading.is("lit"))
        return periodEnd(now);
    return std::nullopt;
}

std::string Tracked::textOf(const TrackedState &state, Nanoseconds now, const journal::Names &names) const
{
    if (!state.plugged)
        return "unplugged";
    if (name_ == "quiet")
        return "quiet for " + std::to_string((now - state.lastExchange) / std::chrono::milliseconds(1)) + "ms";
    if (kind_ == journal::Kind::EEPROM)
        return hexadecimal(state.bytes) + (name_ == "meter" ? ", which is " + std::to_string(meter(state.bytes)) : "");
    journal::Event event;
    event.device = device_;
    event.kind = kind_;
    event.aspect = aspect_;
    event.is = state.value;
    event.part = part_;
    return journal::textOf(event, names) +
           (condition_.reading.is("lit") ? isLitAt(state.value, now) ? ", lit" : ", dark" : "");
}

}  // namespace sim
