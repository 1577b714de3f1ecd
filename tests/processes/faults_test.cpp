// Every system call of a life with a board fails once, and from then on for ever. This program does not use the
// library: it starts the lives and looks at segment and semaphores from outside.
#include "tests/processes/outside.h"
#include "tests/processes/shared_board.h"

#include <cerrno>
#include <cstdlib>
#include <random>
#include <sstream>
#include <sys/sem.h>
#include <vector>

namespace tests::faults
{

namespace
{

const std::vector<std::string> operations =
    wordsOf("open SetOutputBit SetOnPeriodOutputBit SetOffPeriodOutputBit ConfigureEEPROM WriteEEPROM ReadEEPROM "
            "CheckEEPROM ReceiveByteWithTimestamp Receive Send SRAM GetInputs");
/// What went wrong once is over: close and open again.
const std::vector<std::string> again = wordsOf("open SetOutputBit GetInputs");
const std::size_t openedAgain = operations.size();  // its place among what a caller sees

struct Life {
    bool struck = false;
    std::size_t struckIn = 0;  // the place of what a caller sees
    bool repeated = false;
    bool inOrder = false;
    std::vector<std::string> seen;         // what a caller sees, operation by operation
    std::vector<std::string> locks;        // what was seen of the locks
    std::vector<std::string> descriptors;  // how many were open at the beginning and at the end
};

void listen(Life &life, const std::string &line)
{
    if (line == "! struck" && !life.struck) {
        life.struck = true;
        life.struckIn = life.seen.size();
    } else if (line == "! repeated") {
        life.repeated = true;
    } else if (line.starts_with("= ")) {
        life.seen.push_back(line.substr(0, line.find('~')));
        life.locks.push_back(line.substr(line.find('~')));
    } else if (line.starts_with("descriptors ")) {
        life.descriptors.push_back(line);
    } else if (line != "! struck" && line != "ready" && line != "closed") {
        ADD_FAILURE() << line;
    }
}

Life live(const std::string &faults, int model = 3)
{
    startNewBoard();
    ::setenv("SORVANE_FAULTS", faults.c_str(), 1);
    ::setenv("PEER_MODEL", std::to_string(model).c_str(), 1);
    Peer peer(ownWidth(), Peer::Start::Held);
    ::unsetenv("SORVANE_FAULTS");
    ::unsetenv("PEER_MODEL");
    peer.release();
    peer.tell("descriptors");
    for (const std::string &operation : operations)
        peer.tell("do " + operation);
    peer.tell("close");
    for (const std::string &operation : again)
        peer.tell("do " + operation);
    for (const char *end : {"close", "descriptors", "quit"})
        peer.tell(end);
    Life life;
    for (std::string line = peer.answer(30000); !line.empty(); line = peer.answer(30000))
        listen(life, line);
    life.inOrder = peer.wait();
    return life;
}

/// Name, result and code of an operation in a life.
struct Told {
    explicit Told(const std::string &line)
    {
        std::istringstream words(line);
        std::string mark;
        words >> mark >> name >> result >> error;
    }
    std::string name;
    int result = -1;
    int error = -1;
};

class Faults : public Processes
{
protected:
    void SetUp() override
    {
        Processes::SetUp();
        for (int model = 1; model <= 3; ++model)
            undisturbed[model] = live("", model);
        ASSERT_EQ(undisturbed[3].seen.size(), operations.size() + again.size());
        for (const std::string &line : undisturbed[3].locks)
            ASSERT_NE(line.find("registrations 1"), std::string::npos) << line;
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
    /// Calls `check` for the life whose n-th call fails, for every n that there is, and so many at least.
    template <class Check>
    void forEveryCall(const std::string &call, const std::string &often, int error, unsigned int least, Check check,
                      const std::string &besides = "", int model = 3)
    {
        // Where a life takes long to start, it is one call in so many.
        const char *every = std::getenv("SORVANE_EVERY");
        const unsigned int stride = every ? static_cast<unsigned int>(std::atoi(every)) : 1;
        for (unsigned int n = 1 + std::random_device()() % stride;; n += stride) {
            std::string faults = call;
            for (const std::string &word : {std::to_string(n), often, std::to_string(error)})
                faults.append(" ").append(word);
            SCOPED_TRACE(faults + besides);
            const Life life = live(faults + besides, model);
            EXPECT_TRUE(life.inOrder);
            EXPECT_FALSE(life.repeated);
            ASSERT_EQ(life.seen.size(), undisturbed[model].seen.size());
            ASSERT_EQ(life.descriptors.size(), 2u);
            EXPECT_EQ(life.descriptors[0], life.descriptors[1]);
            if (!life.struck) {
                EXPECT_GE(n - 1, least);
                return;
            }
            check(life);
            if (HasFailure())
                return;
        }
    }

    Life undisturbed[4];
};

TEST_F(Faults, ASharedStateOrALockThatCannotBeHadCostsNoOperation)
{
    enum Then { nothingLeft, sameLocks, mayLeave };  // mayLeave: it can keep a life from removing what it made
    const struct {
        const char *call;
        int error;
        unsigned int least;  // calls that a life makes at least
        Then then;
        std::vector<const char *> often = {"once", "ever"};
    } table[] = {
        {"ftok", ENOENT, 2, nothingLeft},
        {"semget", ENOENT, 2, nothingLeft},
        {"semget", EEXIST, 2, nothingLeft},
        {"semget", ENOSPC, 2, nothingLeft},
        {"take", ENOSPC, 20, mayLeave},
        {"leave", EAGAIN, 1, mayLeave},
        {"semop", EINTR, 30, sameLocks, {"once"}},
        {"semop", EIDRM, 20, nothingLeft, {"once"}},
        {"semctl", EACCES, 1, mayLeave},
        {"shmget", ENOENT, 2, nothingLeft},
        {"shmget", EEXIST, 2, nothingLeft},
        {"shmget", EACCES, 2, nothingLeft},
        {"shmat", EIDRM, 1, nothingLeft},
        {"shmat", EINVAL, 1, nothingLeft},
        {"shmat", ENOMEM, 1, nothingLeft},
        {"shmctl", EACCES, 2, mayLeave},
        {"flock", ENOLCK, 4, nothingLeft},
    };
    for (const auto &row : table) {
        for (const char *often : row.often) {
            forEveryCall(row.call, often, row.error, row.least, [&](const Life &life) {
                EXPECT_EQ(life.seen, undisturbed[3].seen);
                if (row.then == sameLocks) {
                    EXPECT_EQ(life.locks, undisturbed[3].locks);
                }
                if (row.then != mayLeave)
                    expectNothingLeft();
                if (row.call == std::string("semctl")) {
                    EXPECT_EQ(valueOf(0), 0) << "a set that stays has no registration";
                }
                if (segment() == -1 && semaphores() == -1)
                    return;
                expectGoodLifeAfterwards();
                removeEverything();
            });
            ASSERT_FALSE(HasFailure()) << row.call;
        }
    }
}

TEST_F(Faults, WhatOthersMakeOrRemoveMeanwhileIsLookedForAgain)
{
    for (const char *faults :
         {"semop 1 once 43", "shmget 2 once 17", "shmat 1 once 43", "shmat 1 once 22", "shmctl 1 once 43"}) {
        EXPECT_EQ(live(faults).locks, undisturbed[3].locks) << faults;
        expectNothingLeft();
    }
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
        {"semop", "once", EINTR, "", false},         {"take", "once", ENOSPC, "", true},
        {"take", "ever", ENOSPC, "", true},          {"leave", "once", EAGAIN, unreadable, false},
        {"leave", "ever", EAGAIN, unreadable, true}, {"semget", "once", ENOENT, "", false, true},
        {"semget", "ever", ENOENT, "", false},       {"semget", "once", ENOSPC, "", false},
        {"shmget", "once", ENOENT, "", false},       {"join", "once", ERANGE, "", false},
        {"shmat", "once", ENOMEM, "", false},        {"shmctl", "once", EACCES, "", false},
        {"ftok", "once", ENOENT, "", false},         {"new", "once", ENOMEM, "", false},
    };
    for (const auto &row : table) {
        const auto check = [&](const Life &life) {
            for (const std::string &line : life.locks)
                EXPECT_TRUE(!row.joinsAllTheSame || line.find("registrations 2") != std::string::npos) << line;
            EXPECT_EQ(segment(), itsSegment);
            EXPECT_EQ(semaphores(), itsSet);
            EXPECT_GE(valueOf(0), 1);
            EXPECT_TRUE(row.registrationsMayStay || valueOf(0) == 1);
            ::semctl(itsSet, 0, SETVAL, 1);
            for (int mutex = 1; mutex <= allMutexes; ++mutex)
                EXPECT_EQ(valueOf(mutex), 1) << "mutex " << mutex - 1;
        };
        forEveryCall(row.call, row.often, row.error, 1, check, row.besides);
        ASSERT_FALSE(HasFailure()) << row.call << ", errno " << row.error;
    }
    EXPECT_EQ(survivor.ask("bit 5 1"), "1");
    EXPECT_EQ(survivor.ask("on").substr(0, 2), "20");
    EXPECT_TRUE(survivor.quit());
    expectNothingLeft();
}

constexpr int transferFailed = 6;

const struct {
    const char *call;
    int error;
    unsigned int least;
    std::vector<int> models;  // that fail once
} driverFaults[] = {{"ioctl", EIO, 60, {1}},
                    {"ioctl", EINTR, 60, {3}},
                    {"open", EACCES, 4, {3}},
                    {"fopen", ENOENT, 4, {3}},
                    {"new", ENOMEM, 8, {1, 3}}};

TEST_F(Faults, AFailedCallFailsItsOperationAndNoOther)
{
    for (const auto &row : driverFaults) {
        const bool exchange = row.call == std::string("ioctl");
        for (int model : row.models) {
            const auto check = [&](const Life &life) {
                const bool opened = Told(life.seen[0]).result != 0;
                int failures = 0;
                for (std::size_t k = 0; k < life.seen.size(); ++k) {
                    const Told told(life.seen[k]);
                    if (told.result == Told(undisturbed[model].seen[k]).result)
                        continue;
                    ++failures;
                    EXPECT_EQ(told.result, 0) << life.seen[k];
                    EXPECT_EQ(told.error != 0, exchange) << life.seen[k];
                    if (exchange && opened && told.name != "CheckEEPROM") {
                        EXPECT_EQ(told.error, transferFailed) << life.seen[k];
                    }
                }
                // Looking for a chip's capacity, an opening too, may do without an answer.
                const Told struck(life.seen[life.struckIn]);
                if (exchange && struck.name != "CheckEEPROM" && struck.name != "open") {
                    EXPECT_EQ(struck.result, 0) << struck.name;
                    EXPECT_EQ(failures, 1);
                }
                // An opening takes the others with it, until the next.
                if (opened && Told(life.seen[openedAgain]).result) {
                    EXPECT_LE(failures, 1);
                }
                expectNothingLeft();
            };
            forEveryCall(row.call, "once", row.error, row.least, check, "", model);
            ASSERT_FALSE(HasFailure()) << row.call << ", model " << model;
        }
    }
}

TEST_F(Faults, ADriverThatFailsForEverFailsEveryOperationFromThenOn)
{
    for (const auto &row : driverFaults) {
        if (row.error == EINTR)
            continue;
        forEveryCall(row.call, "ever", row.error, row.least, [&](const Life &life) {
            bool failed = false;
            for (const std::string &line : life.seen) {
                // A call that only opening makes fails with the next opening, and what follows has no board.
                failed = failed || Told(line).result == 0;
                EXPECT_EQ(Told(line).result, failed ? 0 : 1) << line;
            }
            EXPECT_EQ(Told(life.seen[life.struckIn]).result, 0) << life.seen[life.struckIn];
            expectNothingLeft();
        });
    }
}

}  // namespace

}  // namespace tests::faults
