#include "sim/board/diagnostics.h"

#include "sim/core/model.h"

#include <algorithm>

namespace sim
{

std::optional<Reply> Diagnostics::answer(Request request, Payload payload)
{
    if (request == Request::WriteDiagnosticData)
        return perform([this, payload] { data_ = toBytes(payload); });
    if (request != Request::ReadDiagnosticData)
        return std::nullopt;
    Bytes bytes = data_.empty() ? toBytes(payload) : data_;
    bytes.resize(std::min(bytes.size(), largestAnswer(Model::R35)));
    return tell(bytes);
}

}  // namespace sim
