// Named mutexes that work across processes. A mutex is one semaphore of a named SysV set; inside a process each is one
// object, shared by all its users there and counted.
#ifndef SORVANE_SHARED_MUTEX_H
#define SORVANE_SHARED_MUTEX_H

/// Which mutex: the set's name and the number in it. It lies in shared memory, so its layout is fixed.
struct MutexID {
    MutexID() = default;
    constexpr MutexID(const char *setName, int number, int count) : name(), padding(), count(count), number(number)
    {
        for (int k = 0; k < nameBytes - 1 && setName[k]; ++k)
            name[k] = setName[k];
    }

    bool sameMutex(const MutexID &other) const;
    bool sameSet(const MutexID &other) const;

    static constexpr int nameBytes = 50;
    char name[nameBytes];
    char padding[2];
    int count;   // mutexes in the set; used only when the set is made
    int number;  // index in the set, from 0
};
static_assert(sizeof(MutexID) == 60);

class Mutex
{
public:
    explicit Mutex(const MutexID &id) : mutexID(id) {}
    Mutex(const Mutex &) = delete;
    Mutex &operator=(const Mutex &) = delete;

    virtual bool Lock() = 0;
    virtual bool UnLock() = 0;
    virtual ~Mutex() = default;

    /// The process's object for this mutex, made on first use; null when memory is exhausted. Each call needs one
    /// ReleaseLocalMutex; the last destroys the object and, with the set's last mutex, leaves the set. Both are
    /// defined in mutex_set.cpp, where the one kind of mutex is that there is.
    static Mutex *GetLocalMutex(const MutexID &id);
    static void ReleaseLocalMutex(Mutex *mutex);
    static Mutex *FindMutex(const MutexID &id);

    static Mutex *MutexChain;

    MutexID mutexID;
    Mutex *next = nullptr;
    int localCount = 0;
};

/// Holds a mutex for a scope and gives back only what it got. A null mutex is no lock.
class MutexGuard
{
public:
    explicit MutexGuard(Mutex *mutex) : held_(mutex && mutex->Lock() ? mutex : nullptr) {}
    ~MutexGuard()
    {
        if (held_)
            held_->UnLock();
    }
    bool holds() const { return held_ != nullptr; }
    MutexGuard(const MutexGuard &) = delete;
    MutexGuard &operator=(const MutexGuard &) = delete;

private:
    Mutex *held_;
};

#endif
