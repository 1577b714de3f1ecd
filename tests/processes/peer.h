// Another process that uses the library, told what to do line by line.
//
//     Peer peer;                      // runs, the library loaded
//     peer.ask("3 bit 12 1");         // what it answers
//     peer.quit();                    // leaves in order; kill() does not
#ifndef SORVANE_TESTS_PROCESSES_PEER_H
#define SORVANE_TESTS_PROCESSES_PEER_H

#include <string>
#include <sys/types.h>

namespace tests
{

/// The peer's program: in this width, in the other where this machine makes both (or else in this one, too), and for
/// those around a process that is stopped or killed, of which one in four is of the other width.
const char *ownWidth();
const char *otherWidth();
const char *eitherWidth();
bool hasOtherWidth();

class Peer
{
public:
    enum class Start { Now, Held };

    /// With a gate, a descriptor, it stops just before it loads the library, says "gate" and waits for the gate's end.
    explicit Peer(const std::string &program = ownWidth(), Start start = Start::Now, int gate = -1);
    ~Peer();
    Peer(Peer &&other) noexcept;
    Peer &operator=(Peer &&) = delete;

    /// Lets a held process start, before it is told anything.
    void release() { tell(""); }
    /// Waits until the library is loaded.
    void awaitReady(int milliseconds = patience);
    void tell(const std::string &line);
    /// Throws when none comes in time. At the end of what it says, nothing.
    std::string answer(int milliseconds = patience);
    std::string ask(const std::string &line, int milliseconds = patience);
    /// Whether an answer comes within the time.
    bool answers(int milliseconds) const;
    void leave() { tell("quit"); }
    /// Waits for the end; true if it was an orderly one.
    bool wait();
    bool quit();
    void kill();
    pid_t id() const { return process_; }

private:
    static constexpr int patience = 10000;

    pid_t process_ = -1;
    int wire_ = -1;
    bool ready_ = false;
};

}  // namespace tests

#endif
