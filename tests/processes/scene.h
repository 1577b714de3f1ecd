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

enum class Company { None, Survivor, Joiner };
enum class Fate { IsKilled, GoesOn };

/// What the process is stopped in, beside whom, and what becomes of it.
struct Setting {
    Part part;
    Company company;
    Fate fate = Fate::IsKilled;
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
    explicit Scene(const Setting &setting) : setting_(setting), nextItem_(firstItem + setting.drained)
    {
        startNewBoard();
        sharedBoard().nextItem = firstItem;
        if (setting.company == Company::Survivor) {
            survivor_ = std::make_unique<Peer>(eitherWidth());
            EXPECT_EQ(survivor_->ask("bit 0 1"), "1");
            survivor_->ask("drain " + std::to_string(setting.drained));
        }
        victim_ = std::make_unique<Traced>(ownWidth());
        if (!setting.part.loading() && setting.part.line != opening.line) {
            victim_->beginWith(opening);
            while (victim_->next()) {
            }
        }
        victim_->beginWith(setting.part);
    }
    ~Scene() { removeEverything(); }
    Scene(const Scene &) = delete;
    Scene &operator=(const Scene &) = delete;

    Traced &process() { return *victim_; }

    bool reach(const Moment &moment)
    {
        for (std::size_t k = 0; k < moment.stop; ++k)
            if (!victim_->next())
                return false;
        return victim_->stepInstructions(moment.instruction);
    }

    /// Lets the fate come, and looks at who lives on, at who starts before or after, and at what is left at last. True
    /// when somebody had to wait for it: only a holder of the arena's mutex makes others wait.
    bool end()
    {
        const bool waits = setting_.company == Company::Joiner && arenaMutexHolder() == victim_->peer.id();
        std::optional<Peer> joiner;
        if (setting_.company == Company::Joiner) {
            joiner.emplace(eitherWidth(), Peer::Start::Held).release();
            if (waits) {
                EXPECT_FALSE(joiner->answers(30)) << "it joined although the arena's mutex is held";
            } else {
                expectWholeLife(*joiner);
            }
        }
        if (setting_.fate == Fate::GoesOn)
            victim_->release();
        else
            victim_->peer.kill();
        if (waits)
            expectWholeLife(*joiner);
        setting_.fate == Fate::GoesOn ? expectGoingOn() : expectNothingLost();
        return waits;
    }

private:
    // The stream comes in batches: 150 to 199, 200 to 299, 300 to 398.
    static constexpr int firstItem = 150;

    /// Works, is registered where it works, and leaves.
    void expectWholeLife(Peer &peer) const
    {
        expectAtWork(peer, 3, patience);
        expectPattern(peer, survivor_ ? 0x0D : 0x08);
        const ArenaReport report = reportArena();
        EXPECT_EQ(report.text(), "");
        EXPECT_GE(report.registrations, survivor_ ? 2 : 1);
        EXPECT_TRUE(peer.quit());
    }

    void expectGoingOn() const
    {
        if (setting_.part.loading())
            expectAtWork(victim_->peer, 2);
        EXPECT_TRUE(setting_.part.leaving() ? victim_->peer.wait() : victim_->peer.quit());
        expectNothingLeft();
    }

    void expectNothingLost() const
    {
        if (survivor_) {
            EXPECT_EQ(survivor_->ask("bit 2 1", patience), "1");
            expectPattern(*survivor_, 0x05);
            if (setting_.part.line.find("9Bit") == std::string::npos)  // mixing both forms shifts the items by right
                expectStream(*survivor_);
        }
        Peer newcomer(eitherWidth());
        expectWholeLife(newcomer);
        EXPECT_TRUE(!survivor_ || survivor_->quit());
        // A process that is killed before it has registered leaves nothing, nor does one that has left already.
        const bool registered = !setting_.part.loading() && !setting_.part.leaving();
        expectOnlyRegistrationsLeft("all left", registered, 1);
    }

    /// The outputs of those that live are as they wanted them; the victim's own change has happened or not.
    void expectPattern(Peer &peer, unsigned int own) const
    {
        const std::string &line = setting_.part.line;
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
        const bool batchDied = nextItem_ == 200 && items[0] == 300;
        EXPECT_TRUE(items[0] == nextItem_ || items[0] == nextItem_ + 1 || batchDied) << items[0];
        for (std::size_t k = 1; k < items.size(); ++k)
            ASSERT_EQ(items[k], items[k - 1] + 1) << "item " << k << " after the kill";
    }

    Setting setting_;
    int nextItem_;
    std::unique_ptr<Peer> survivor_;
    std::unique_ptr<Traced> victim_;
};

}  // namespace tests::moments

#endif
