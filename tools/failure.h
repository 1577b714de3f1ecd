// How a command ends that does not succeed. main tells it, as text or as JSON, and chooses the exit status.
#ifndef SORVANE_TOOLS_FAILURE_H
#define SORVANE_TOOLS_FAILURE_H

#include <optional>
#include <stdexcept>
#include <string>

namespace tools
{

constexpr int statusOfFailure = 1;
constexpr int statusOfUsageError = 2;

/// Called wrongly; the text says what is allowed.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The board or the system said no: what happened, the board's code where there is one, and what to try.
class Refusal : public std::runtime_error
{
public:
    explicit Refusal(const std::string &what, std::string advice = "", std::optional<int> code = std::nullopt)
        : std::runtime_error(what), advice_(std::move(advice)), code_(code)
    {
    }

    const std::string &advice() const { return advice_; }
    std::optional<int> code() const { return code_; }

private:
    std::string advice_;
    std::optional<int> code_;
};

}  // namespace tools

#endif
