// A mutex and its guard that clang's thread-safety analysis can follow; std::mutex carries no annotations.
#pragma once

#include <mutex>

#if defined(__clang__)
#define FAULT_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define FAULT_THREAD_ANNOTATION(attribute)
#endif

#define FAULT_GUARDED_BY(mutex) FAULT_THREAD_ANNOTATION(guarded_by(mutex))

class FAULT_THREAD_ANNOTATION(capability("mutex")) FaultMutex {
public:
    void lock() FAULT_THREAD_ANNOTATION(acquire_capability()) { mutex.lock(); }
    void unlock() FAULT_THREAD_ANNOTATION(release_capability()) { mutex.unlock(); }

private:
    std::mutex mutex;
};

class FAULT_THREAD_ANNOTATION(scoped_lockable) FaultLock {
public:
    explicit FaultLock(FaultMutex& toHold) FAULT_THREAD_ANNOTATION(acquire_capability(toHold))
        : held(toHold) {
        held.lock();
    }
    ~FaultLock() FAULT_THREAD_ANNOTATION(release_capability()) { held.unlock(); }
    FaultLock(const FaultLock&) = delete;
    FaultLock& operator=(const FaultLock&) = delete;

private:
    FaultMutex& held;
};
