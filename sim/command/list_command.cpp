#include "sim/command/list_command.h"

#include "sim/control/about.h"
#include "sim/control/control_client.h"

#include <cstdio>
#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>
#include <pwd.h>

namespace sim
{

namespace
{

constexpr std::chrono::seconds patience{30};

struct ListedRun {
    RunName run;
    std::string user;
    AboutRun about;
};

std::string nameOfUser(uid_t user)
{
    const passwd *entry = ::getpwuid(user);
    return entry ? entry->pw_name : std::to_string(user);
}

std::vector<ListedRun> runsWithFacts()
{
    std::vector<ListedRun> runs;
    for (const RunName &run : reachableRuns()) {
        try {
            const Outcome answer = ControlClient(run).ask({.kind = Request::Kind::About});
            if (answer.status == 0)
                runs.push_back({run, nameOfUser(run.user), readAbout(answer.data)});
        } catch (const std::exception &) {
            continue;  // it has ended meanwhile
        }
    }
    return runs;
}

void printTable(const std::vector<ListedRun> &runs)
{
    const auto line = [](const TextWords &columns) {
        const int widths[] = {16, 10, 10, 24, 21};
        for (std::size_t column = 0; column < std::size(widths); ++column)
            std::cout << std::left << std::setw(widths[column]) << columns[column] << ' ';
        std::cout << columns.back() << '\n';
    };
    line({"NAME", "ID", "USER", "BOARDS", "SINCE", "PROGRAM"});
    for (const ListedRun &each : runs)
        line({each.run.shown(), each.run.id, each.user, join(each.about.boards, ", "), each.about.since,
              each.about.program.empty() ? "(programs enter)" : join(each.about.program, " ")});
}

void printJson(const std::vector<ListedRun> &runs)
{
    auto list = nlohmann::ordered_json::array();
    for (const ListedRun &each : runs) {
        auto run = nlohmann::ordered_json::parse(each.about.json);
        run["user"] = each.user;
        list.push_back(run);
    }
    std::cout << nlohmann::ordered_json{{"runs", list}}.dump() << '\n';
}

}  // namespace

int listRuns(bool asJson)
{
    const std::vector<ListedRun> runs = runsWithFacts();
    if (asJson)
        printJson(runs);
    else
        printTable(runs);
    return 0;
}

int stopRun(const std::string &which)
{
    const RunName run = chooseRun(which);
    ControlClient client(run);
    const Outcome answer = client.ask({.kind = Request::Kind::Stop});
    if (answer.status != 0)
        throw std::runtime_error(answer.error);
    if (client.waitForEnd(patience))
        return 0;
    std::fprintf(stderr, "sorvane-sim: the run %s is still there: its program has been told to end and does not\n",
                 run.shown().c_str());
    return 1;
}

}  // namespace sim
