// Looks for what is wrong with a machine and says what to do. It opens no node, sends nothing and changes nothing,
// unless it is told to remove shared objects that nobody uses.
#include "tools/failure.h"
#include "tools/findings.h"
#include "tools/print.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace tools
{

namespace
{

const char *wordFor(Weight weight)
{
    return weight == Weight::Fine ? "fine" : weight == Weight::Remark ? "remark" : "PROBLEM";
}

Findings lookAtEverything()
{
    Findings all;
    for (const auto look : {lookAtNodes, lookAtImages, lookAtSharedState, lookAtKeyFiles}) {
        const Findings some = look();
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

int doctor(bool reset, const Settings &settings)
{
    const Findings findings = reset ? resetIfUnused() : lookAtEverything();
    Json list = Json::array();
    for (const Finding &finding : findings) {
        list.push_back({{"weight", finding.weight == Weight::Problem ? "problem" : wordFor(finding.weight)},
                        {"subject", finding.subject},
                        {"text", finding.text}});
        if (!finding.whatToDo.empty())
            list.back()["do"] = finding.whatToDo;
        if (settings.json)
            continue;
        say("%-7s  %-8s  %s\n", wordFor(finding.weight), finding.subject.c_str(), finding.text.c_str());
        if (!finding.whatToDo.empty())
            say("                   -> %s\n", finding.whatToDo.c_str());
    }
    if (settings.json)
        print({{"findings", list}});
    const bool isWell = std::none_of(findings.begin(), findings.end(),
                                     [](const Finding &finding) { return finding.weight == Weight::Problem; });
    return isWell ? 0 : statusOfFailure;
}

}  // namespace

Command::Action declareDoctor(CLI::App &command)
{
    auto reset = std::make_shared<bool>(false);
    command.add_flag("--reset-if-unused", *reset,
                     "removes shared memory and semaphores where nobody is attached, registered and alive");
    return [reset](const Settings &settings) { return doctor(*reset, settings); };
}

}  // namespace tools
