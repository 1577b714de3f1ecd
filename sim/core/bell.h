// Wakes up whoever waits for something to happen on the boards, as a descriptor that can be polled beside others.
#ifndef SORVANE_SIM_CORE_BELL_H
#define SORVANE_SIM_CORE_BELL_H

#include <atomic>
#include <mutex>
#include <vector>

namespace sim
{

class Bell
{
public:
    /// From any thread. Nothing to do while nobody listens.
    void ring();

    /// Hears every ring from its construction on.
    class Listener
    {
    public:
        /// Throws std::system_error when the process may open no more descriptors.
        explicit Listener(Bell &bell);
        Listener(const Listener &) = delete;
        Listener &operator=(const Listener &) = delete;
        ~Listener();

        /// Readable since a ring, until heard() is called.
        int descriptor() const { return descriptor_; }
        void heard() const;

    private:
        Bell &bell_;
        int descriptor_;
    };

private:
    std::mutex mutex_;
    std::vector<int> listeners_;
    std::atomic<bool> anybody_ = false;
};

}  // namespace sim

#endif
