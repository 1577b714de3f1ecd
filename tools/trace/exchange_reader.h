// An exchange as it passes between a traced program and the driver: what is asked is read from the program's memory
// before the call, what came back after it.
#ifndef SORVANE_TOOLS_TRACE_EXCHANGE_READER_H
#define SORVANE_TOOLS_TRACE_EXCHANGE_READER_H

#include "journal/event.h"
#include "tools/trace/driver_call.h"

#include <map>

namespace trace
{

/// An exchange that the driver has not answered yet.
struct Begun {
    journal::Event event;
    DriverCall call;
    // Of a record: where the driver puts what it answers.
    std::uint64_t statusAt = 0;
    std::uint64_t answerAt = 0;
    std::uint64_t countAt = 0;
};

class ExchangeReader
{
public:
    /// In front of the call; nothing where the descriptor is none of a board.
    std::optional<Begun> begin(pid_t thread, const DriverCall &call);

    /// Behind it, with the call's result. Outcome Failed has the error number as its status: the driver's own; EPROTO
    /// where an R20's packet is no answer to what was asked; EINTR where a signal was quicker than the driver.
    void finish(Begun &begun, std::int64_t result);

private:
    protocol::Model modelOf(pid_t thread, int device);

    std::map<int, protocol::Model> models_;  ///< of the boards that answer to records
};

}  // namespace trace

#endif
