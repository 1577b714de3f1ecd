#include "tools/trace/report.h"

#include "protocol/families.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <nlohmann/json.hpp>
#include <utility>

namespace trace
{

namespace
{

constexpr std::size_t mostBytes = 64;

std::vector<std::string> allOperations()
{
    std::vector<std::string> names;
    for (const protocol::Family &family : protocol::families()) {
        for (const protocol::Operation &operation : family.operations) {
            names.emplace_back(operation.name);
            names.insert(names.end(), operation.senders.begin(), operation.senders.end());
        }
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

// Names that share its beginning, so much of it as any does.
std::string similarTo(std::string word, const std::vector<std::string> &names)
{
    for (; !word.empty(); word.pop_back()) {
        std::string found;
        for (const std::string &name : names) {
            if (name.starts_with(word))
                found += (found.empty() ? "" : ", ") + name;
        }
        if (!found.empty())
            return found;
    }
    return "the operations of docs/wire.md";
}

std::string callerOf(const journal::Event &event)
{
    if (event.process == 0)
        return "";
    const std::string process = std::to_string(event.process);
    return event.thread == 0 || event.thread == event.process ? process : process + '/' + std::to_string(event.thread);
}

std::string reasonOf(const journal::Event &event)
{
    const char *name = event.outcome == protocol::Outcome::Failed ? ::strerrorname_np(event.status) : nullptr;
    return name ? std::string(": ") + name + " (" + std::strerror(event.status) + ')' : "";
}

std::string durationOf(const journal::Event &event)
{
    const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(event.duration).count();
    return event.duration.count() == 0 ? "" : " [" + std::to_string(microseconds) + " us]";
}

std::string dataOf(const journal::Summary &summary)
{
    nlohmann::ordered_json operations = nlohmann::ordered_json::array();
    for (const journal::OperationCount &operation : summary.operations())
        operations.push_back({{"operation", operation.name},
                              {"count", operation.count},
                              {"refused", operation.refused},
                              {"failed", operation.failed},
                              {"shortest_us", operation.shortest.count()},
                              {"median_us", operation.median.count()},
                              {"percentile_99_us", operation.slow.count()}});
    return nlohmann::ordered_json{{"sorvane", 1}, {"operations", operations}}.dump() + '\n';
}

}  // namespace

Filter::Filter(std::vector<std::string> operations) : operations_(std::move(operations))
{
    const std::vector<std::string> known = allOperations();
    for (const std::string &operation : operations_) {
        if (!std::binary_search(known.begin(), known.end(), operation))
            throw std::invalid_argument("--filter: no exchange is called \"" + operation +
                                        "\"; allowed: " + similarTo(operation, known));
    }
}

bool Filter::passes(const journal::Event &event) const
{
    if (operations_.empty())
        return true;
    if (event.kind != journal::Kind::Exchange)
        return false;
    const protocol::Exchange exchange = journal::exchangeOf(event);
    const protocol::Operation *operation =
        protocol::findOperation(exchange.model, exchange.pipe, exchange.request, exchange.payload);
    return operation && std::any_of(operations_.begin(), operations_.end(),
                                    [&](const std::string &name) { return operation->isSentBy(name); });
}

std::string traceLine(const journal::Event &event, const journal::Names &names)
{
    std::string board = names.board(event.device);
    if (board.empty())
        board = "Vexa_" + std::to_string(event.device);
    const std::string caller = callerOf(event);
    std::array<char, 32> time{};
    std::snprintf(time.data(), time.size(), "%12.6f", static_cast<double>(event.time.count()) / 1e9);
    return time.data() + (caller.empty() ? "" : "  " + caller) + "  " + board + "  " +
           journal::textOf(event, names, mostBytes) + reasonOf(event) + durationOf(event);
}

Report::Report(std::FILE *file, Form form, Filter filter, journal::Names names)
    : file_(file), form_(form), filter_(std::move(filter)), names_(std::move(names))
{
}

void Report::begin(const journal::Header &header)
{
    if (form_ == Form::Data)
        heading_ = journal::jsonOf(header) + '\n';
}

void Report::add(const journal::Event &event)
{
    if (!filter_.passes(event))
        return;
    if (form_ == Form::Lines)
        write(traceLine(event, names_) + '\n');
    else if (form_ == Form::Data)
        write(journal::jsonOf(event, names_) + '\n');
    else
        summary_.add(event);
}

bool Report::end()
{
    if (form_ == Form::Summary)
        write(summary_.text());
    else if (form_ == Form::SummaryAsData)
        write(dataOf(summary_));
    else
        write("");
    return std::ferror(file_) == 0;
}

// At once, so that whoever looks on sees what has happened.
void Report::write(const std::string &line)
{
    const std::string text = std::exchange(heading_, "") + line;
    std::fwrite(text.data(), 1, text.size(), file_);
    std::fflush(file_);
}

}  // namespace trace
