#include "sim/board/diary.h"

namespace sim
{

journal::Event &Diary::note(journal::Kind kind, unsigned int part)
{
    journal::Event &event = ring_.append();
    event.time = timeline_.now();
    event.device = device_;
    event.kind = kind;
    event.part = part;
    return event;
}

void Diary::noteChange(journal::Kind kind, unsigned int part, std::uint32_t was, std::uint32_t is,
                       journal::Aspect aspect)
{
    if (was == is)
        return;
    journal::Event &event = note(kind, part);
    event.aspect = aspect;
    event.was = was;
    event.is = is;
}

void Diary::noteWritten(journal::Kind kind, std::size_t address, Payload before, Payload after)
{
    journal::Event &event = note(kind, static_cast<unsigned int>(address));
    assign(event.before, before);
    assign(event.bytes, after);
}

}  // namespace sim
