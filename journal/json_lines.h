// Events as JSON Lines, docs/journal.schema.json: a line that says what follows, then a line an event.
//
//     {"journal":1,"by":"sorvane-sim 13.4.0","program":["./game"],"start":"2026-01-31T12:00:00.000Z"}
//     {"device":0,"number":1,"time":152304000,"kind":"input","part":2,"name":"coin_1","was":false,"is":true}
//
// A reader takes lines of a later version as far as it understands them: unknown members and kinds are passed over. An
// exchange has its bytes, and for the eye also the operation by name; the reader goes by the bytes.
#ifndef SORVANE_JOURNAL_JSON_LINES_H
#define SORVANE_JOURNAL_JSON_LINES_H

#include "journal/event.h"

#include <stdexcept>
#include <vector>

namespace journal
{

constexpr int formatVersion = 1;

/// One that was there at the start.
struct HeaderBoard {
    int device = 0;
    protocol::Model model = protocol::Model::R20;
    bool highSpeed = false;
};

struct Header {
    int version = formatVersion;
    std::string by;                    ///< the program that wrote it, with its version
    std::vector<std::string> program;  ///< whose boards these are, with its arguments; empty: not known
    std::string start;                 ///< UTC, "2026-01-31T12:00:00.000Z": the time from which the events count
    std::vector<HeaderBoard> boards = {};
};

/// The present moment, or one so long ago, as the start is written.
std::string timeNow(std::chrono::nanoseconds ago = {});

/// Each a line without its end, in UTF-8 whatever the bytes are.
std::string jsonOf(const Header &header);
std::string jsonOf(const Event &event, const Names &names = {});

class FormatError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Throws FormatError when the line is no such line, or its version is none that this reader knows.
Header headerFrom(std::string_view line);

/// Nothing for a kind that this reader does not know, and for a line that tells of events that are not there. Throws
/// FormatError for a line that is none.
std::optional<Event> eventFrom(std::string_view line);

}  // namespace journal

#endif
