// What has happened on the boards, for whoever asks.
#include "journal/json_lines.h"
#include "sim/cabinet/event_names.h"
#include "sim/journal/event_reader.h"
#include "sim/language/actions.h"

#include <algorithm>

namespace sim
{

namespace
{

using journal::Event;

// Which events are wanted.
class Filter
{
public:
    explicit Filter(const Reading &reading)
        : kinds_(reading.all("--kind")), parts_(reading.all("--part")), exchanges_(reading.has("--exchanges"))
    {
    }

    bool wants(const Event &event) const
    {
        const bool kind = kinds_.empty() ? exchanges_ || event.kind != journal::Kind::Exchange
                                         : (exchanges_ && event.kind == journal::Kind::Exchange) || isOfKinds(event);
        return kind && (parts_.empty() || isOfParts(event));
    }

private:
    bool isOfKinds(const Event &event) const
    {
        return std::any_of(kinds_.begin(), kinds_.end(),
                           [&event](const Value &kind) { return kind.word == wordFor(event.kind); });
    }

    bool isOfParts(const Event &event) const
    {
        return std::any_of(parts_.begin(), parts_.end(), [&event](const Value &part) {
            return part.part ? isAbout(event, *part.part) : hasPart(event.kind) && event.part == part.number;
        });
    }

    std::vector<Value> kinds_;
    std::vector<Value> parts_;
    bool exchanges_;
};

// To whoever hears it, or else into the answer.
class Telling
{
public:
    Telling(Call &call, bool asData)
        : session_(call.session), names_(cabinet::eventNames(call.session.cabinet)), several_(call.devices.size() > 1),
          asData_(asData)
    {
    }

    bool begin()
    {
        journal::Header header;
        header.by = "sorvane-sim";
        header.start = journal::timeNow(session_.boards.clock().now());
        header.boards = headerBoards(session_.boards);
        return !asData_ || say(journal::jsonOf(header));
    }
    bool tell(const Event &event) { return say(asData_ ? jsonOf(event, names_) : lineOf(event, names_, several_)); }
    bool tellLost(std::uint64_t count)
    {
        const std::string number = std::to_string(count);
        return say(asData_ ? "{\"lost\":" + number + "}" : "(" + number + " earlier events are kept no more)");
    }
    const std::string &text() const { return text_; }

private:
    bool say(const std::string &line)
    {
        const std::string whole = line + (asData_ ? "" : "\n");
        if (session_.listener)
            return session_.listener->tell(whole);
        text_ += whole + (asData_ ? "\n" : "");
        return true;
    }

    Session &session_;
    journal::Names names_;
    bool several_;
    bool asData_;
    std::string text_;
};

bool tellAll(EventReader &reader, const Filter &filter, Telling &telling)
{
    for (EventReader::Batch batch = reader.read(); batch.lost > 0 || !batch.events.empty(); batch = reader.read()) {
        if (batch.lost > 0 && !telling.tellLost(batch.lost))
            return false;
        for (const Event &event : batch.events) {
            if (filter.wants(event) && !telling.tell(event))
                return false;
        }
    }
    return true;
}

}  // namespace

Outcome tellEvents(Call &call)
{
    const Reading &reading = call.reading;
    if (reading.has("--since") && call.devices.size() > 1)
        throw UsageError("each board counts its events by itself; say --board or name a part to tell which is meant");
    const Filter filter(reading);
    Telling telling(call, call.session.wantsData || reading.has("--json"));
    EventReader reader(call.session.boards, call.devices, reading.numberOr("--since", 0));
    bool heard = telling.begin() && tellAll(reader, filter, telling);
    while (heard && reading.has("--follow") && call.session.listener && !call.session.listener->isGone()) {
        (void)reader.wait(call.session.listener->descriptor());
        heard = tellAll(reader, filter, telling);
    }
    return {.text = telling.text()};
}

}  // namespace sim
