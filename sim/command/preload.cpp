#include "sim/command/preload.h"

#include "sim/control/preload_environment.h"
#include "sim/system/failure.h"
#include "sim/system/program.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <sched.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace sim
{

namespace
{

constexpr char libraryName[] = "libsorvane_sim_preload.so";

struct Binary {
    bool isELF = false;
    unsigned char width = 0;  ///< ELFCLASS32 or ELFCLASS64
    bool isDynamic = false;
    bool hasMoreRights = false;
};

template <class Header, class Segment>
bool hasInterpreter(const OwnedFd &file)
{
    Header header{};
    if (::pread(file.get(), &header, sizeof header, 0) != sizeof header)
        return false;
    for (unsigned int number = 0; number < header.e_phnum; ++number) {
        Segment segment{};
        const auto at = static_cast<off_t>(header.e_phoff + number * sizeof segment);
        if (::pread(file.get(), &segment, sizeof segment, at) == sizeof segment && segment.p_type == PT_INTERP)
            return true;
    }
    return false;
}

Binary inspect(const std::string &path)
{
    Binary binary;
    const OwnedFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<unsigned char, EI_NIDENT> identity{};
    struct stat attributes {
    };
    if (!file || ::fstat(file.get(), &attributes) != 0 ||
        ::pread(file.get(), identity.data(), identity.size(), 0) != static_cast<ssize_t>(identity.size()))
        return binary;
    binary.isELF = std::memcmp(identity.data(), ELFMAG, SELFMAG) == 0;
    binary.width = identity[EI_CLASS];
    binary.hasMoreRights = (attributes.st_mode & (S_ISUID | S_ISGID)) != 0;
    binary.isDynamic = binary.width == ELFCLASS32 ? hasInterpreter<Elf32_Ehdr, Elf32_Phdr>(file)
                                                  : hasInterpreter<Elf64_Ehdr, Elf64_Phdr>(file);
    return binary;
}

std::string folderOfThisProgram()
{
    std::array<char, PATH_MAX> self{};
    if (::readlink("/proc/self/exe", self.data(), self.size() - 1) <= 0)
        fail("finding this program");
    const std::string path = self.data();
    return path.substr(0, path.rfind('/') + 1);
}

// What LD_PRELOAD gets for a program of this width; empty where there is no library for it. In a build the library
// stands beside this program, in the build's width alone. Installed, each width has its own: the loader of each process
// puts the directory of its width for $LIB, so that children of the other width have boards, too.
std::string libraryOfWidth(unsigned char width)
{
    const std::string folder = folderOfThisProgram();
    const std::string built = folder + libraryName;
    if (::access(built.c_str(), R_OK) == 0)
        return inspect(built).width == width ? built : "";
    const std::string prefix = folder + "../";
    const std::string triplet = width == ELFCLASS32 ? "i386-linux-gnu" : "x86_64-linux-gnu";
    const std::string installed = prefix + "lib/" + triplet + "/" + libraryName;
    return ::access(installed.c_str(), R_OK) == 0 ? prefix + "$LIB/" + libraryName : "";
}

// A script is taken as it comes: whatever runs it is a program of the machine.
std::string libraryForScripts()
{
    for (const unsigned char width : {ELFCLASS64, ELFCLASS32}) {
        if (std::string library = libraryOfWidth(width); !library.empty())
            return library;
    }
    throw std::runtime_error(std::string(libraryName) + " is neither in " + folderOfThisProgram() +
                             " nor in a directory of libraries beside it");
}

std::string libraryFor(const std::string &program)
{
    const Binary binary = inspect(findProgram(program));
    if (!binary.isELF)
        return libraryForScripts();
    const auto refusal = [&program](const std::string &reason) {
        return std::runtime_error("no boards inside " + program + ": " + reason);
    };
    if (binary.hasMoreRights)
        throw refusal("it runs with more rights than its user and takes no library");
    if (!binary.isDynamic)
        throw refusal("it is statically linked and takes no library; only device nodes reach it");
    std::string library = libraryOfWidth(binary.width);
    if (library.empty()) {
        const std::string width = binary.width == ELFCLASS32 ? "32" : "64";
        throw refusal("it is a " + width + "-bit program and there is no " + libraryName +
                      " of its width; use or install the " + width + "-bit build, or use device nodes (--how node)");
    }
    return library;
}

std::string quoted(const TextWords &words)
{
    std::string line;
    for (const std::string &word : words)
        line += (line.empty() ? "\"" : " \"") + word + "\"";
    return line;
}

// The library opens these files once more, inside the program and perhaps from another directory.
std::string fileReadAgain(const char *option, const std::string &file)
{
    const std::unique_ptr<char, void (*)(void *)> path(::realpath(file.c_str(), nullptr), std::free);
    struct stat attributes {
    };
    if (!path || ::stat(path.get(), &attributes) != 0 || !S_ISREG(attributes.st_mode))
        throw UsageError(std::string(option) + " \"" + file +
                         "\": inside a program it is opened again; allowed is a regular file");
    return path.get();
}

void setOrClear(const char *variable, const std::string &value)
{
    if (value.empty())
        ::unsetenv(variable);
    else
        ::setenv(variable, value.c_str(), 1);
}

void setFile(const char *variable, const char *option, const std::string &file)
{
    setOrClear(variable, file.empty() ? "" : fileReadAgain(option, file));
}

}  // namespace

void executePreloaded(const RunRequest &request)
{
    setFile(preloadScenario, "--scenario", request.scenarioFile);
    setOrClear(preloadSteps, join(request.steps, "\n"));
    setOrClear(preloadGrace, std::to_string(request.grace / std::chrono::milliseconds(1)));
    setFile(preloadCabinet, "--cabinet", request.cabinetFile);
    setFile(preloadRecord, "--record", request.keeping.record);
    setOrClear(preloadSummary, request.keeping.summary ? "1" : "");
    setOrClear(preloadHeader, journal::jsonOf(request.keeping.header));
    const std::string library = libraryFor(request.program[0]);
    const char *others = std::getenv("LD_PRELOAD");
    ::setenv("LD_PRELOAD", (library + (others ? ":" + std::string(others) : "")).c_str(), 1);
    ::setenv(preloadBoards, quoted(request.boardArguments).c_str(), 1);
    setOrClear(preloadName, request.name);
    ::setenv(preloadProgram, std::to_string(::getpid()).c_str(), 1);
    // Only who may do it gets it; the program can do without.
    if (request.privateIpc)
        (void)::unshare(CLONE_NEWIPC);
    execute(request.program);
}

}  // namespace sim
