#include "sim/control/about.h"

#include <array>
#include <ctime>
#include <nlohmann/json.hpp>

namespace sim
{

namespace
{

using Json = nlohmann::ordered_json;

std::string nowInUTC()
{
    const std::time_t now = std::time(nullptr);
    tm parts{};
    ::gmtime_r(&now, &parts);
    std::array<char, sizeof "2026-11-25T14:41:02Z + more digits of a year"> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%FT%TZ", &parts)};
}

}  // namespace

std::string aboutRun(const RunName &name, const VirtualBoards &boards, const cabinet::Cabinet &cabinet,
                     const TextWords &program)
{
    Json list = Json::array();
    for (int deviceNo = 0; deviceNo < deviceCount; ++deviceNo) {
        const std::shared_ptr<VirtualBoard> board = boards.hold(deviceNo);
        if (!board)
            continue;
        const cabinet::Board *named = cabinet.board(deviceNo);
        list.push_back(
            {{"device", deviceNo}, {"model", nameOf(board->model())}, {"name", named ? named->name : std::string()}});
    }
    const Json about{{"name", name.shown()}, {"id", name.id},      {"uid", name.user},
                     {"boards", list},       {"program", program}, {"since", nowInUTC()}};
    return about.dump(-1, ' ', false, Json::error_handler_t::replace);
}

AboutRun readAbout(const std::string &text)
{
    try {
        const Json json = Json::parse(text);
        AboutRun about{.boards = {}, .program = json.at("program"), .since = json.at("since"), .json = text};
        for (const Json &board : json.at("boards")) {
            const std::string name = board.at("name");
            about.boards.push_back(std::to_string(board.at("device").get<int>()) + "=" +
                                   board.at("model").get<std::string>() + (name.empty() ? "" : " (" + name + ")"));
        }
        return about;
    } catch (const Json::exception &error) {
        throw UsageError(std::string("a run tells about itself what is not understood: ") + error.what());
    }
}

}  // namespace sim
