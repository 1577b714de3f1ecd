// Loads and unloads the library for callgrind to count, as the first process of the machine or beside one that has it.
//
//     bench_loading LIBRARY first|joining
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <valgrind/callgrind.h>

namespace
{

/// A process that has the library, and lives until it is killed.
pid_t startHolder(const char *library)
{
    int ready[2];
    if (::pipe(ready) != 0)
        return -1;
    const pid_t holder = ::fork();
    if (holder == 0) {
        const char word = ::dlopen(library, RTLD_NOW) ? 'y' : 'n';
        if (::write(ready[1], &word, 1) == 1)
            ::pause();
        ::_exit(1);
    }
    char word = 'n';
    return ::read(ready[0], &word, 1) == 1 && word == 'y' ? holder : -1;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    const bool joining = std::strcmp(argv[2], "joining") == 0;
    const pid_t holder = joining ? startHolder(argv[1]) : 0;
    if (holder == -1)
        return 1;
    VALGRIND_PRINTF("BEGIN load\n");
    CALLGRIND_ZERO_STATS;
    void *library = ::dlopen(argv[1], RTLD_NOW);
    CALLGRIND_DUMP_STATS_AT("load");
    VALGRIND_PRINTF("BEGIN unload\n");
    CALLGRIND_ZERO_STATS;
    const int closed = library ? ::dlclose(library) : -1;
    CALLGRIND_DUMP_STATS_AT("unload");
    VALGRIND_PRINTF("END\n");
    if (joining) {
        ::kill(holder, SIGKILL);
        ::waitpid(holder, nullptr, 0);
    }
    if (closed != 0)
        std::fprintf(stderr, "bench_loading: %s\n", ::dlerror());
    return closed == 0 ? 0 : 1;
}
