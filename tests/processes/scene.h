// A process that is stopped at a moment of its life, and what the others make of its fate.
#ifndef SORVANE_TESTS_PROCESSES_SCENE_H
#define SORVANE_TESTS_PROCESSES_SCENE_H

#include "tests/processes/outside.h"
#include "tests/processes/shared_board.h"
#include "tests/processes/tracer.h"

#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <vector>

namespace tests::moments
{

constexpr int patience = 5000;  // ms, beside a traced process
constexpr int wholeBatch = 50;  // items of the stream that the other takes before: the next one fetches a batch

inline const Part loading = {""}, leaving = {"quit"}, opening = {"do open"};

enum class Company { none, survivor, joiner };
enum class Fate { isKilled, goesOn };

/// What the process is stopped in, beside whom, and what becomes of it.
struct Setting {
    Part part;
    Company company;
    Fate fate = Fate::isKilled;
    int drained = wholeBatch;
};

/// So many instructions behind a stop, which is before or after a system call.
struct Moment {
    std::size_t stop;
    std::size_t instruction = 0;
};

class Scene
{
public:
    explicit Scene(const Setting &setting) : setting(setting), nextItem(firstItem + setting.drained)
    {
        startNewBoard();
        sharedBoard().nextItem = firstItem;
        if (setting.company == Company::survivor) {
            survivor = std::make_unique<Peer>(eitherWidth());
            EXPECT_EQ(survivor->ask("bit 0 1"), "1");
            survivor->ask("drain " + std::to_string(setting.drained));
        }
        victim = std::make_unique<Traced>(ownWidth());
        if (!setting.part.loading() && setting.part.line != opening.line) {
            victim->beginWith(opening);
            while (victim->next()) {
            }
        }
        victim->beginWith(setting.part);
    }
    ~Scene() { removeEverything(); }
    Scene(const Scene &) = delete;
    Scene &operator=(const Scene &) = delete;

    Traced &process() { return *victim; }

    bool reach(const Moment &moment)
    {
        for (std::size_t k = 0; k < moment.stop; ++k)
            if (!victim->next())
                return false;
        return victim->stepInstructions(moment.instruction);
    }

    /// Lets the fate come, and looks at who lives on, at who starts before or after, and at what is left at last. True
    /// when somebody had to wait for it: only a holder of the arena's mutex makes others wait.
    bool end()
    {
        const bool waits = setting.company == Company::joiner && arenaMutexHolder() == victim->peer.id();
        std::optional<Peer> joiner;
        if (setting.company == Company::joiner) {
            joiner.emplace(eitherWidth(), Peer::Start::held).release();
            if (waits) {
                EXPECT_FALSE(joiner->answers(30)) << "it joined although the arena's mutex is held";
            } else {
                expectWholeLife(*joiner);
            }
        }
        if (setting.fate == Fate::goesOn)
            victim->release();
        else
            victim->peer.kill();
        if (waits)
            expectWholeLife(*joiner);
        setting.fate == Fate::goesOn ? expectGoingOn() : expectNothingLost();
        return waits;
    }

private:
    // The stream comes in batches: 150 to 199, 200 to 299, 300 to 398.
    static constexpr int firstItem = 150;

    /// Works, is registered where it works, and leaves.
    void expectWholeLife(Peer &peer) const
    {
        expectAtWork(peer, 3, patience);
        expectPattern(peer, survivor ? 0x0D : 0x08);
        const ArenaReport report = reportArena();
        EXPECT_EQ(report.text(), "");
        EXPECT_GE(report.registrations, survivor ? 2 : 1);
        EXPECT_TRUE(peer.quit());
    }

    void expectGoingOn() const
    {
        if (setting.part.loading())
            expectAtWork(victim->peer, 2);
        EXPECT_TRUE(setting.part.leaving() ? victim->peer.wait() : victim->peer.quit());
        expectNothingLeft();
    }

    void expectNothingLost() const
    {
        if (survivor) {
            EXPECT_EQ(survivor->ask("bit 2 1", patience), "1");
            expectPattern(*survivor, 0x05);
            if (setting.part.line.find("9Bit") == std::string::npos)  // mixing both forms shifts the items by right
                expectStream(*survivor);
        }
        Peer newcomer(eitherWidth());
        expectWholeLife(newcomer);
        EXPECT_TRUE(!survivor || survivor->quit());
        // A process that is killed before it has registered leaves nothing, nor does one that has left already.
        const bool registered = !setting.part.loading() && !setting.part.leaving();
        expectOnlyRegistrationsLeft("all left", registered, 1);
    }

    /// The outputs of those that live are as they wanted them; the victim's own change has happened or not.
    void expectPattern(Peer &peer, unsigned int own) const
    {
        const std::string &line = setting.part.line;
        const bool whole = line.find("Outputs") != std::string::npos && line.find("Modify") == std::string::npos;
        for (const char *pattern : {"on", "off"}) {
            const std::string hex = peer.ask(pattern);
            const auto first = static_cast<unsigned int>(std::stoi(hex.substr(0, 2), nullptr, 16));
            EXPECT_TRUE(first == own || (whole && first == (own | 1))) << pattern << " " << hex;
            const std::string rest = hex.substr(2);
            EXPECT_TRUE(rest == "00000000" || rest == "02000000") << pattern << " " << hex;
        }
    }

    /// Whoever asks next gets the item after the last, or the one after that if the victim took it, or those of the
    /// next batch if it died with one in its hands; never an old one, and never one that is put together wrongly.
    void expectStream(Peer &peer) const
    {
        std::istringstream numbers(peer.ask("drain 60"));
        const std::vector<int> items(std::istream_iterator<int>(numbers), {});
        ASSERT_EQ(items.size(), 60u);
        const bool batchDied = nextItem == 200 && items[0] == 300;
        EXPECT_TRUE(items[0] == nextItem || items[0] == nextItem + 1 || batchDied) << items[0];
        for (std::size_t k = 1; k < items.size(); ++k)
            ASSERT_EQ(items[k], items[k - 1] + 1) << "item " << k << " after the kill";
    }

    Setting setting;
    int nextItem;
    std::unique_ptr<Peer> survivor;
    std::unique_ptr<Traced> victim;
};

}  // namespace tests::moments

#endif
