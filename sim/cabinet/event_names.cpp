#include "sim/cabinet/event_names.h"

namespace cabinet
{

namespace
{

// Where several kinds of part have numbers of one sort, the first that has this one.
std::vector<Kind> kindsOf(const journal::Event &event)
{
    switch (event.kind) {
    case journal::Kind::Output:
        return {Kind::Output};
    case journal::Kind::Input:
    case journal::Kind::Counter:
        return {Kind::Input, Kind::Coin, Kind::Hopper};
    case journal::Kind::Hopper:
        return {Kind::Hopper};
    case journal::Kind::Reel:
        return {Kind::Reel};
    case journal::Kind::Coin:
        return {event.aspect == journal::Aspect::CcTalk ? Kind::CcTalkCoin : Kind::Coin};
    case journal::Kind::Received:
    case journal::Kind::Sent:
        return {Kind::Serial};
    case journal::Kind::EEPROM:
        return {Kind::Meter};
    default:
        return {};
    }
}

}  // namespace

bool isAbout(const journal::Event &event, const Part &part)
{
    switch (part.kind) {
    case Kind::Input:
        return event.part == part.number &&
               (event.kind == journal::Kind::Input || event.kind == journal::Kind::Counter);
    case Kind::Output:
        return event.part == part.number && event.kind == journal::Kind::Output;
    case Kind::Coin:
        return event.part == part.number &&
               (event.kind == journal::Kind::Input || event.kind == journal::Kind::Counter ||
                (event.kind == journal::Kind::Coin && event.aspect != journal::Aspect::CcTalk));
    case Kind::CcTalkCoin:
        return event.part == part.number && event.kind == journal::Kind::Coin &&
               event.aspect == journal::Aspect::CcTalk;
    case Kind::Hopper:
        return event.part == part.number && event.kind == journal::Kind::Hopper;
    case Kind::Reel:
        return event.part == part.number && event.kind == journal::Kind::Reel;
    case Kind::Meter:
        return event.kind == journal::Kind::EEPROM && event.part < part.number + part.bytes &&
               part.number < event.part + event.bytes.size();
    case Kind::Serial:
        return event.part == part.number &&
               (event.kind == journal::Kind::Received || event.kind == journal::Kind::Sent);
    case Kind::Switch:
        break;
    }
    return false;
}

journal::Names eventNames(const Cabinet &cabinet)
{
    journal::Names names;
    names.board = [&cabinet](int device) {
        const Board *board = cabinet.board(device);
        return board ? board->name : std::string();
    };
    names.part = [&cabinet](const journal::Event &event) {
        for (const Kind kind : kindsOf(event)) {
            if (const Part *part = cabinet.part(event.device, kind, event.part))
                return part->name;
        }
        return std::string();
    };
    names.activeLow = [&cabinet](const journal::Event &event) {
        const Part *part = cabinet.part(event.device, Kind::Input, event.part);
        return part && part->activeLow;
    };
    return names;
}

}  // namespace cabinet
