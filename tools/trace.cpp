// `trace`: every exchange of an unmodified program, or of one that runs already.
#include "sim/cabinet/event_names.h"
#include "sim/system/descriptors.h"
#include "sim/system/program.h"
#include "tools/command.h"
#include "tools/failure.h"
#include "tools/node.h"
#include "tools/trace/run.h"
#include "tools/trace_options.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>

namespace tools
{

namespace
{

struct TraceOptions {
    std::string output;
    std::string record;
    ReportOptions report;
    int process = 0;
};

// Its descriptor is neither the program's nor in the place of a standard one that was closed.
std::FILE *openForWriting(const std::string &name)
{
    const sim::OwnedFd opened(::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    const int descriptor = opened ? ::fcntl(opened.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1) : -1;
    std::FILE *file = descriptor != -1 ? ::fdopen(descriptor, "w") : nullptr;
    if (!file)
        throw Refusal(name + " cannot be written: " + std::strerror(errno));
    return file;
}

std::vector<journal::HeaderBoard> boardsThere()
{
    std::vector<journal::HeaderBoard> boards;
    for (int device = 0; device < devices; ++device) {
        if (const std::optional<protocol::Model> model = modelOf(device))
            boards.push_back({device, *model, isHighSpeed(device)});
    }
    return boards;
}

class Trace
{
public:
    Trace(const TraceOptions &options, const Settings &settings)
        : output_(options.output.empty() ? stderr : openForWriting(options.output)),
          report_(output_, options.report.form(settings), options.report.chosen(),
                  cabinet::eventNames(settings.cabinet))
    {
        if (!options.record.empty())
            recording_.emplace(openForWriting(options.record), trace::Form::Data, trace::Filter(),
                               cabinet::eventNames(settings.cabinet));
    }

    int ofProgram(const std::vector<std::string> &program)
    {
        begin(program);
        const int status = trace::traceProgram(program, exchange_, note);
        end();
        sim::endLike(status);
    }

    int ofProcess(int process)
    {
        begin({});
        trace::traceProcess(process, exchange_, note);
        end();
        return 0;
    }

private:
    static void note(const std::string &text) { std::fprintf(stderr, "sorvane: %s\n", text.c_str()); }

    void begin(const std::vector<std::string> &program)
    {
        const journal::Header header{journal::formatVersion, "sorvane " SORVANE_VERSION, program, journal::timeNow(),
                                     boardsThere()};
        report_.begin(header);
        if (recording_)
            recording_->begin(header);
    }

    void end()
    {
        if (!report_.end() || (recording_ && !recording_->end()))
            note(std::string("not all of the trace could be written: ") + std::strerror(errno));
        if (!any_)
            note("no exchange with a board reached the kernel");
    }

    std::FILE *output_;
    trace::Report report_;
    std::optional<trace::Report> recording_;
    bool any_ = false;
    trace::OnExchange exchange_ = [this](const journal::Event &event) {
        any_ = true;
        report_.add(event);
        if (recording_)
            recording_->add(event);
    };
};

int carryOut(const TraceOptions &options, const Settings &settings)
{
    const bool attaches = options.process != 0;
    if (attaches != settings.program.empty())
        throw UsageError("what is traced is either a process (-p PID) or a program (-- PROGRAM [ARG...])");
    try {
        Trace trace(options, settings);
        return attaches ? trace.ofProcess(options.process) : trace.ofProgram(settings.program);
    } catch (const trace::Obstacle &obstacle) {
        throw Refusal(obstacle.what, obstacle.advice);
    }
}

}  // namespace

Command::Action declareTrace(CLI::App &command)
{
    auto options = std::make_shared<TraceOptions>();
    command.footer("What is traced is a program behind --, or with -p a process.");
    command.add_option("-o,--output", options->output, "the file that the trace goes to; without it, standard error");
    options->report.declare(command);
    command.add_option("--record", options->record, "a file for `sorvane show` and `sorvane-sim run --replay`");
    command.add_option("-p,--process", options->process, "a process that runs already")->check(CLI::PositiveNumber);
    return [options](const Settings &settings) { return carryOut(*options, settings); };
}

}  // namespace tools
