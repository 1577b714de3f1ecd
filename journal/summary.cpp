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

bool hasTimes(const OperationCount &operation)
{
    return operation.slow.count() != 0;
}

std::string timesOf(const OperationCount &operation)
{
    std::array<char, 80> text{};
    const auto number = [](std::chrono::microseconds time) { return static_cast<long long>(time.count()); };
    if (hasTimes(operation))
        std::snprintf(text.data(), text.size(), "%8lld us %8lld us %8lld us", number(operation.shortest),
                      number(operation.median), number(operation.slow));
    else
        std::snprintf(text.data(), text.size(), "%11s %11s %11s", "-", "-", "-");
    return text.data();
}

using Durations = std::map<std::chrono::microseconds, std::uint64_t>;

/// The shortest duration that so many of a hundred did not exceed.
std::chrono::microseconds quantile(const Durations &durations, unsigned int percent)
{
    std::uint64_t all = 0;
    for (const auto &[duration, count] : durations)
        all += count;
    std::uint64_t passed = 0;
    for (const auto &[duration, count] : durations) {
        passed += count;
        if (passed * 100 >= all * percent)
            return duration;
    }
    return {};
}

}  // namespace

void Summary::add(const Event &event)
{
    if (event.kind != Kind::Exchange)
        return;
    Operation &operation = byName_[nameOf(event)];
    ++operation.count.count;
    operation.count.refused += event.outcome == protocol::Outcome::Refused ? 1 : 0;
    operation.count.failed += event.outcome == protocol::Outcome::Failed ? 1 : 0;
    if (event.duration.count() != 0)
        ++operation.durations[std::chrono::ceil<std::chrono::microseconds>(event.duration)];
}

std::vector<OperationCount> Summary::operations() const
{
    std::vector<OperationCount> operations;
    for (const auto &[name, operation] : byName_) {
        OperationCount count = operation.count;
        count.name = name;
        count.shortest = quantile(operation.durations, 0);
        count.median = quantile(operation.durations, 50);
        count.slow = quantile(operation.durations, 99);
        operations.push_back(count);
    }
    std::stable_sort(operations.begin(), operations.end(),
                     [](const OperationCount &one, const OperationCount &other) { return one.count > other.count; });
    return operations;
}

std::string Summary::text() const
{
    const std::vector<OperationCount> all = operations();
    const bool timed = std::any_of(all.begin(), all.end(), hasTimes);
    std::string text = timed ? "exchanges     shortest      median        99 %  operation\n" : "";
    for (const OperationCount &operation : all) {
        std::array<char, 32> count{};
        std::snprintf(count.data(), count.size(), "%9llu", static_cast<unsigned long long>(operation.count));
        text += count.data() + (timed ? "  " + timesOf(operation) : "") + "  " + operation.name + troubleOf(operation) +
                "\n";
    }
    return text;
}

}  // namespace journal
