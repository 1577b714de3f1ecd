#include "journal/summary.h"

#include "protocol/families.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace journal
{

namespace
{

std::string nameOf(const Event &event)
{
    const protocol::Exchange exchange = exchangeOf(event);
    const protocol::Operation *operation =
        protocol::findOperation(exchange.model, exchange.pipe, exchange.request, exchange.payload);
    return operation ? operation->name
                     : "request " + std::to_string(event.request) + " on pipe " + std::to_string(event.pipe);
}

std::string troubleOf(const OperationCount &operation)
{
    std::string text;
    if (operation.refused > 0)
        text += std::to_string(operation.refused) + " refused";
    if (operation.failed > 0)
        text += (text.empty() ? "" : ", ") + std::to_string(operation.failed) + " failed";
    return text.empty() ? "" : " (" + text + ")";
}

std::string timesOf(const OperationCount &operation)
{
    if (operation.duration.count() == 0)
        return "";
    std::array<char, 64> text{};
    const double count = static_cast<double>(operation.count);
    std::snprintf(text.data(), text.size(), "  %9.3f ms, longest %9.3f ms",
                  static_cast<double>(operation.duration.count()) / count / 1e6,
                  static_cast<double>(operation.longest.count()) / 1e6);
    return text.data();
}

}  // namespace

void Summary::add(const Event &event)
{
    if (event.kind != Kind::Exchange)
        return;
    const std::string name = nameOf(event);
    OperationCount &operation = byName_[name];
    operation.name = name;
    ++operation.count;
    operation.refused += event.outcome == protocol::Outcome::Refused ? 1 : 0;
    operation.failed += event.outcome == protocol::Outcome::Failed ? 1 : 0;
    operation.duration += event.duration;
    operation.longest = std::max(operation.longest, event.duration);
}

std::vector<OperationCount> Summary::operations() const
{
    std::vector<OperationCount> operations;
    for (const auto &[name, operation] : byName_)
        operations.push_back(operation);
    std::stable_sort(operations.begin(), operations.end(),
                     [](const OperationCount &one, const OperationCount &other) { return one.count > other.count; });
    return operations;
}

std::string Summary::text() const
{
    std::string text;
    for (const OperationCount &operation : operations()) {
        std::array<char, 32> count{};
        std::snprintf(count.data(), count.size(), "%9llu", static_cast<unsigned long long>(operation.count));
        text += count.data() + timesOf(operation) + "  " + operation.name + troubleOf(operation) + "\n";
    }
    return text;
}

}  // namespace journal
