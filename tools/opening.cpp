#include "tools/opening.h"

#include "inspect/arena_report.h"
#include "tools/failure.h"
#include "tools/gate.h"
#include "tools/stand_in.h"

#include <CLI/CLI.hpp>
#include <dlfcn.h>
#include <filesystem>
#include <unistd.h>

namespace tools
{

namespace
{

/// The library waits without a limit for processes that hold the shared memory's mutex: better not to begin.
ArenaReport lookAtArena()
{
    ArenaReport report = reportArena();
    if (!report.findings.empty())
        throw Refusal("the shared memory is not in order: " + report.findings.front(),
                      "Try: sorvane doctor tells more and what to do");
    return report;
}

void *loadModule()
{
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
    const std::string path = self.parent_path() / "sorvane_library.so";
    void *module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module)
        throw Refusal(std::string("the library cannot be loaded: ") + ::dlerror(), "Try: install sorvane again");
    return module;
}

}  // namespace

void check(OpenedBoard &opened, int result, const std::string &what)
{
    if (!result)
        refuse(what, opened.lastError());
}

void refuseStandIn(Board &board)
{
    if (isStandIn(board.model()) && board.node().isCharacterDevice() && !board.firmwareRuns())
        throw Refusal(board.title() + " is a real board whose firmware does not run, and the image that this build "
                                      "would load is a stand-in that only idles: it would stop the board",
                      std::string("Try: ") + howToSupplyImages);
}

void Opening::addTo(CLI::App &command)
{
    command.add_flag("--open", allowed,
                     "open the board through the library, even where that loads its firmware or configures its EEPROM");
    beside = command.get_option_no_throw("--beside");
    if (!beside)
        beside = command.add_flag("--beside")->description("load or configure while other processes have it open");
}

std::string Opening::wouldDo(Board &board)
{
    const ArenaReport arena = lookAtArena();
    if (!board.firmwareRuns())
        return std::string("loads the ") + nameOf(board.model()) +
               "'s firmware, finds out which EEPROM is fitted and configures "
               "the board for it";
    if (!arena.devices[board.device()].eepromConfigured)
        return "finds out which EEPROM is fitted and configures the board for it, since no program has done so yet";
    return "";
}

OpenedBoard &Opening::open(Board &board)
{
    refuseStandIn(board);
    const std::string does = wouldDo(board);
    if (!does.empty() && beside)
        Consent{true, beside->count() > 0}.needNobodyElse(board, "go through the library, which " + does + ",");
    if (!does.empty() && !allowed) {
        std::string what = "opening " + board.title() + " through the library " + does;
        if (!::isatty(STDIN_FILENO))
            throw Refusal(what + ", and that was not asked for", "Try: add --open where it is wanted");
        what[0] = 'O';
        askOrRefuse(what + ". Go on?");
    }
    signals_ = std::make_unique<StopSignals>();
    module_ = loadModule();
    const auto openBoard = reinterpret_cast<OpenBoard *>(::dlsym(module_, openBoardName));
    int code = 0;
    opened_.reset(openBoard ? openBoard(board.device(), &code) : nullptr);
    if (!opened_)
        refuse("opening " + board.title() + " through the library", code);
    return *opened_;
}

Opening::~Opening()
{
    opened_.reset();
    if (module_)
        ::dlclose(module_);
}

}  // namespace tools
