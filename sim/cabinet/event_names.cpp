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
    return names;
}

}  // namespace cabinet
