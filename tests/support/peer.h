// Another process that uses the library, told what to do line by line.
//
//     Peer peer;                      // runs, the library loaded
//     peer.ask("output 3 12 1");      // what it answers
//     peer.quit();                    // leaves in order; kill() does not
#ifndef SORVANE_TESTS_SUPPORT_PEER_H
#define SORVANE_TESTS_SUPPORT_PEER_H

#include <string>
#include <sys/types.h>

namespace tests
{

class Peer
{
public:
    enum class Start { now, held };

    explicit Peer(const std::string &program = PEER_PROGRAM, Start start = Start::now);
    ~Peer();
    Peer(Peer &&other) noexcept;
    Peer &operator=(Peer &&) = delete;

    /// Lets a held process start.
    void release();
    /// Waits until the library is loaded.
    void waitUntilReady();
    void tell(const std::string &line);
    std::string answer();
    /// Whether an answer comes within the time.
    bool answers(int milliseconds) const;
    std::string ask(const std::string &line);
    void leave() { tell("quit"); }
    /// Waits for the end; true if it was an orderly one.
    bool wait();
    bool quit();
    void kill();
    pid_t id() const { return process; }

private:
    pid_t process = -1;
    int toPeer = -1;
    int fromPeer = -1;
    int gate = -1;
};

}  // namespace tests

#endif
