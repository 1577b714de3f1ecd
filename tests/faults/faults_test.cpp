// Every system call of a life with a board fails once, and from then on for ever. This program does not use the
// library: it starts the lives (tests/faults/faulty_life.cpp) and looks at segment and semaphores from outside.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <sstream>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <vector>

#include "tests/support/peer.h"

namespace tests
{

namespace
{

int segment()
{
    return ::shmget(::ftok("/tmp/R20SharedMemory", 1), 0, 0);
}

int semaphores()
{
    return ::semget(::ftok("/tmp/Sem_R20Mutex", 1), 0, 0);
}

struct Life {
    bool struck = false;
    std::size_t struckIn = 0;  // the line of what a caller sees
    bool repeated = false;
    int status = -1;
    std::vector<std::string> seen;   // what a caller sees, operation by operation
    std::vector<std::string> locks;  // what was seen of the locks
};

Life live(const std::string &faults, int model = 3)
{
    ::setenv("SORVANE_FAULTS", faults.c_str(), 1);
    const std::string command = std::string("exec " FAULTY_LIFE " ") + std::to_string(model) + " 2>&1";
    std::FILE *output = ::popen(command.c_str(), "r");
    Life life;
    char line[2048];
    while (std::fgets(line, sizeof line, output)) {
        const std::string text = line;
        if (text == "! struck\n" && !life.struck) {
            life.struck = true;
            life.struckIn = life.seen.size();
        }
        life.repeated = life.repeated || text == "! repeated\n";
        if (text[0] == '=')
            life.seen.push_back(text);
        else if (text[0] == '~')
            life.locks.push_back(text);
        else if (text[0] != '!')
            ADD_FAILURE() << text;
    }
    life.status = ::pclose(output);
    ::unsetenv("SORVANE_FAULTS");
    return life;
}

/// Name, result and code of a line that a life tells.
struct Told {
    explicit Told(const std::string &line)
    {
        std::istringstream words(line);
        std::string skipped;
        words >> skipped >> name >> result >> skipped >> error;
    }
    std::string name;
    int result = -1;
    int error = -1;
};

void removeWhatIsLeft()
{
    if (segment() != -1)
        ::shmctl(segment(), IPC_RMID, nullptr);
    if (semaphores() != -1)
        ::semctl(semaphores(), 0, IPC_RMID);
}

std::string valuesOfSet()
{
    std::string text = "registrations and mutexes:";
    for (int k = 0; k < 11; ++k)
        text += " " + std::to_string(::semctl(semaphores(), k, GETVAL));
    return text + ", last changed by " + std::to_string(::semctl(semaphores(), 0, GETPID));
}

class Faults : public testing::Test
{
protected:
    void SetUp() override
    {
        removeWhatIsLeft();
        for (int model = 1; model <= 3; ++model)
            undisturbed[model] = live("", model);
        for (const std::string &line : undisturbed[3].locks)
            ASSERT_NE(line.find("registrations 1"), std::string::npos) << line;
    }
    void TearDown() override { removeWhatIsLeft(); }

    void expectNothingLeft()
    {
        EXPECT_EQ(segment(), -1);
        EXPECT_EQ(semaphores(), -1) << valuesOfSet();
        removeWhatIsLeft();
    }
    /// What is left serves the next life. That one may find the chip configured, which opening then leaves alone.
    void expectGoodLifeAfterwards()
    {
        const Life next = live("");
        ASSERT_EQ(next.seen.size(), undisturbed[3].seen.size());
        EXPECT_EQ(Told(next.seen[0]).result, 1);
        for (std::size_t k = 1; k < next.seen.size(); ++k)
            EXPECT_EQ(next.seen[k], undisturbed[3].seen[k]);
    }
    /// Calls `check` for the life whose n-th call fails, for every n that there is, and says how many there are.
    template <class Check>
    unsigned int forEveryCall(const std::string &call, const std::string &often, int error, Check check,
                              const std::string &besides = "", int model = 3)
    {
        // Where a life takes long to start, it is one call in so many.
        const char *every = std::getenv("SORVANE_EVERY");
        const unsigned int stride = every ? static_cast<unsigned int>(std::atoi(every)) : 1;
        for (unsigned int n = 1 + std::random_device()() % stride;; n += stride) {
            const std::string faults = call + " " + std::to_string(n) + " " + often + " " + std::to_string(error);
            SCOPED_TRACE(faults + besides);
            const Life life = live(faults + besides, model);
            EXPECT_EQ(life.status, 0) << "ended by signal " << (life.status & 127);
            EXPECT_FALSE(life.repeated);
            EXPECT_EQ(life.seen.empty() ? "" : life.seen.back(), "= descriptors closed\n");
            if (!life.struck)
                return n - 1;
            check(life);
            if (HasFailure())
                return n;
        }
    }

    Life undisturbed[4];
};

constexpr int transferFailed = 6;

struct Case {
    const char *call;
    int error;
    unsigned int least;  // calls that a life makes at least
    bool leaves;         // whether the failure can keep a life from removing what it made
};

TEST_F(Faults, ASharedStateOrALockThatCannotBeHadCostsNoOperation)
{
    const Case table[] = {
        {"ftok", ENOENT, 2, false},   {"semget", ENOENT, 2, false}, {"semget", EEXIST, 2, false},
        {"semget", ENOSPC, 2, false}, {"semop", ENOSPC, 20, true},  {"semop", EAGAIN, 1, true},
        {"semctl", EACCES, 1, true},  {"shmget", ENOENT, 2, false}, {"shmget", EEXIST, 2, false},
        {"shmget", EACCES, 2, false}, {"shmat", EIDRM, 1, false},   {"shmat", EINVAL, 1, false},
        {"shmat", ENOMEM, 1, false},  {"shmctl", EACCES, 2, true},  {"flock", ENOLCK, 4, false},
    };
    for (const Case &row : table) {
        for (const char *often : {"once", "ever"}) {
            const unsigned int calls = forEveryCall(row.call, often, row.error, [&](const Life &life) {
                EXPECT_EQ(life.seen, undisturbed[3].seen);
                if (!row.leaves)
                    expectNothingLeft();
                if (segment() == -1 && semaphores() == -1)
                    return;
                expectGoodLifeAfterwards();
                removeWhatIsLeft();
            });
            EXPECT_GE(calls, row.least) << row.call;
            ASSERT_FALSE(HasFailure()) << row.call;
        }
    }
}

TEST_F(Faults, AnInterruptedSemopCostsNeitherLockNorRegistration)
{
    const unsigned int calls = forEveryCall("semop", "once", EINTR, [&](const Life &life) {
        EXPECT_EQ(life.seen, undisturbed[3].seen);
        EXPECT_EQ(life.locks, undisturbed[3].locks);
        expectNothingLeft();
    });
    EXPECT_GE(calls, 30u);
}

TEST_F(Faults, ASetRemovedBehindALifeCostsNoOperation)
{
    const unsigned int calls = forEveryCall("semop", "once", EIDRM, [&](const Life &life) {
        EXPECT_EQ(life.seen, undisturbed[3].seen);
        expectNothingLeft();
    });
    EXPECT_GE(calls, 20u);
}

TEST_F(Faults, NothingIsTakenFromALivingProcess)
{
    Peer survivor;
    const int itsSegment = segment(), itsSet = semaphores();
    ASSERT_NE(itsSegment, -1);
    ASSERT_NE(itsSet, -1);
    const std::string unreadable = ";semctl 1 ever 13";
    const struct {
        const char *call, *often;
        int error;
        std::string besides;
        bool registrationsMayStay;
        bool joinsAllTheSame = false;
    } table[] = {
        {"semop", "once", EINTR, "", false},         {"semop", "once", ENOSPC, "", true},
        {"semop", "ever", ENOSPC, "", true},         {"semop", "once", EAGAIN, unreadable, false},
        {"semop", "ever", EAGAIN, unreadable, true}, {"semget", "once", ENOENT, "", false, true},
        {"semget", "ever", ENOENT, "", false},       {"semget", "once", ENOSPC, "", false},
        {"shmget", "once", ENOENT, "", false},       {"semop", "once", ERANGE, "", false},
        {"shmat", "once", ENOMEM, "", false},        {"shmctl", "once", EACCES, "", false},
        {"ftok", "once", ENOENT, "", false},         {"new", "once", ENOMEM, "", false},
    };
    for (const auto &row : table) {
        const unsigned int calls = forEveryCall(
            row.call, row.often, row.error,
            [&](const Life &life) {
                for (const std::string &line : life.locks)
                    EXPECT_TRUE(!row.joinsAllTheSame || line.find("registrations 2") != std::string::npos) << line;
                EXPECT_EQ(segment(), itsSegment);
                EXPECT_EQ(semaphores(), itsSet);
                const int registrations = ::semctl(itsSet, 0, GETVAL);
                EXPECT_GE(registrations, 1);
                if (!row.registrationsMayStay) {
                    EXPECT_EQ(registrations, 1);
                }
                ::semctl(itsSet, 0, SETVAL, 1);
                for (int mutex = 0; mutex < 10; ++mutex)
                    EXPECT_EQ(::semctl(itsSet, mutex + 1, GETVAL), 1) << "mutex " << mutex;
            },
            row.besides);
        EXPECT_GE(calls, 1u) << row.call << ", errno " << row.error;
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_EQ(survivor.ask("output 3 5 1"), "0") << "it has no board, but its table";
    EXPECT_EQ(survivor.ask("on 3").substr(0, 2), "20");
    EXPECT_TRUE(survivor.quit());
    expectNothingLeft();
}

TEST_F(Faults, AFailedCallFailsItsOperationAndNoOther)
{
    const struct {
        const char *call;
        int error;
        unsigned int least;
        std::vector<int> models;
    } table[] = {{"ioctl", EIO, 60, {1}},
                 {"ioctl", EINTR, 60, {3}},
                 {"open", EACCES, 4, {3}},
                 {"fopen", ENOENT, 4, {3}},
                 {"new", ENOMEM, 8, {1, 3}}};
    for (const auto &row : table) {
        for (int model : row.models) {
            const auto check = [&](const Life &life) {
                ASSERT_EQ(life.seen.size(), undisturbed[model].seen.size());
                const bool opened = Told(life.seen[0]).result != 0;
                int failures = 0;
                for (std::size_t k = 0; k < life.seen.size(); ++k) {
                    const Told told(life.seen[k]);
                    if (told.result == Told(undisturbed[model].seen[k]).result)
                        continue;
                    ++failures;
                    EXPECT_EQ(told.result, 0) << life.seen[k];
                    const bool exchange = std::string(row.call) == "ioctl";
                    EXPECT_EQ(told.error != 0, exchange) << life.seen[k];
                    if (exchange && opened && told.name != "check") {
                        EXPECT_EQ(told.error, transferFailed) << life.seen[k];
                    }
                }
                // Looking for a chip's capacity, an opening too, may do without an answer.
                const std::string struck = Told(life.seen[life.struckIn]).name;
                if (std::string(row.call) == "ioctl" && struck != "check" && !struck.starts_with("open")) {
                    EXPECT_EQ(Told(life.seen[life.struckIn]).result, 0) << struck;
                    EXPECT_EQ(failures, 1);
                }
                // An opening takes the others with it, until the next.
                if (opened && Told(life.seen[life.seen.size() - 4]).result) {
                    EXPECT_LE(failures, 1);
                }
                expectNothingLeft();
            };
            const unsigned int calls = forEveryCall(row.call, "once", row.error, check, "", model);
            EXPECT_GE(calls, row.least) << row.call;
            ASSERT_FALSE(HasFailure()) << row.call << ", model " << model;
        }
    }
}

TEST_F(Faults, ADriverThatFailsForEverFailsEveryOperationFromThenOn)
{
    for (const Case &row : {Case{"ioctl", EIO, 60, false}, Case{"open", EACCES, 4, false},
                            Case{"fopen", ENOENT, 4, false}, Case{"new", ENOMEM, 8, false}}) {
        forEveryCall(row.call, "ever", row.error, [&](const Life &life) {
            ASSERT_EQ(life.seen.size(), undisturbed[3].seen.size());
            bool failed = false;
            for (std::size_t k = 0; k + 1 < life.seen.size(); ++k) {
                const Told told(life.seen[k]);
                // A call that only opening makes fails with the next opening, and what follows has no board.
                failed = failed || told.result == 0;
                EXPECT_EQ(told.result, failed ? 0 : 1) << life.seen[k];
            }
            EXPECT_EQ(Told(life.seen[life.struckIn]).result, 0) << life.seen[life.struckIn];
            expectNothingLeft();
        });
    }
}

}  // namespace

}  // namespace tests
