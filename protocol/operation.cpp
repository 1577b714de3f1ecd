#include "protocol/operation.h"

#include <algorithm>

namespace protocol
{

bool Operation::isSentBy(std::string_view operation) const
{
    return operation == name || std::find(senders.begin(), senders.end(), operation) != senders.end();
}

}  // namespace protocol
