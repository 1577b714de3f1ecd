#include "sim/command/ctl_command.h"

#include "sim/command/follow.h"
#include "sim/control/control_client.h"
#include "sim/language/files.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace sim
{

namespace
{

constexpr char standardStream[] = "-";

Bytes bytesFrom(const std::string &file)
{
    if (file != standardStream)
        return bytesOfFile(file);
    Bytes bytes;
    for (int c; bytes.size() <= largestFile && (c = std::getchar()) != EOF;)
        bytes.push_back(static_cast<unsigned char>(c));
    return bytes;
}

void putInto(const std::string &file, const std::string &data)
{
    const auto json = nlohmann::json::parse(data, nullptr, false);
    const Bytes bytes = bytesOfHex(json.is_object() ? json.value("bytes", "?") : "?");
    if (file != standardStream)
        writeFile(file, bytes);
    else
        std::fwrite(bytes.data(), 1, bytes.size(), stdout);
}

void print(const std::string &text)
{
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

}  // namespace

int control(const std::optional<std::string> &run, const TextWords &words)
{
    const Command command = Command::parse(words);
    const Reading &reading = command.reading();
    if (reading.row().name == std::string("state") && reading.has("--follow"))
        return followState(chooseRun(run), words);
    Request request{.words = words, .wantsData = reading.has("--json")};
    if (const std::optional<std::string> file = command.contentFile())
        request.content = bytesFrom(*file);
    const Outcome outcome = ControlClient(chooseRun(run)).ask(request, print);
    if (const std::optional<std::string> file = command.newFile(); file && outcome.status == 0)
        putInto(*file, outcome.data);
    else
        print(outcome.data.empty() ? outcome.text : outcome.data + "\n");
    if (!outcome.error.empty())
        std::fprintf(stderr, "sorvane-sim: %s\n", outcome.error.c_str());
    return outcome.status;
}

}  // namespace sim
