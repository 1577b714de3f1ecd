// The options of `run` and `serve`, and the run that they ask for.
#ifndef SORVANE_SIM_COMMAND_RUN_OPTIONS_H
#define SORVANE_SIM_COMMAND_RUN_OPTIONS_H

#include "sim/command/run_request.h"

namespace CLI
{
class App;
}

namespace sim
{

/// What both take. It outlives the parsing; the request throws UsageError for what cannot be.
class BoardsOptions
{
public:
    explicit BoardsOptions(CLI::App &command);
    BoardsOptions(const BoardsOptions &) = delete;
    BoardsOptions &operator=(const BoardsOptions &) = delete;

    /// Steps come from `run` alone.
    RunRequest request(const TextWords &steps = {}) const { return request(boards_, steps); }
    /// With these boards and no others; each word is one --board.
    RunRequest request(const TextWords &boards, const TextWords &steps) const;

private:
    TextWords boards_;
    std::optional<std::string> cabinet_;
    std::optional<std::string> scenario_;
    std::optional<std::string> name_;
    bool privateIpc_ = false;
    bool shareIpc_ = false;
};

class RunOptions
{
public:
    explicit RunOptions(CLI::App &command);

    RunRequest request(const TextWords &program) const;

private:
    BoardsOptions boards_;
    std::string how_ = "auto";
    bool summary_ = false;
    std::optional<std::string> record_;
    TextWords steps_;
    std::string grace_ = "2s";
    std::optional<std::string> replay_;
};

class ServeOptions
{
public:
    explicit ServeOptions(CLI::App &command);

    RunRequest request() const;

private:
    BoardsOptions boards_;
    bool background_ = false;
    bool endsWithInput_ = false;
};

}  // namespace sim

#endif
