// Locks whose rules clang checks: what a lock guards cannot be touched where it is not held.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define ZRM_THREAD_ATTRIBUTE(attribute) __attribute__((attribute))
#else
#define ZRM_THREAD_ATTRIBUTE(attribute)
#endif

// Of a member: read and written with that lock held only.
#define ZRM_GUARDED_BY(lock) ZRM_THREAD_ATTRIBUTE(guarded_by(lock))
// Of a pointer: what it points to is.
#define ZRM_PT_GUARDED_BY(lock) ZRM_THREAD_ATTRIBUTE(pt_guarded_by(lock))
// Of a function: called with that lock held, or with it not held.
#define ZRM_REQUIRES(...) ZRM_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define ZRM_EXCLUDES(...) ZRM_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
// Of a lock's own functions.
#define ZRM_CAPABILITY(name) ZRM_THREAD_ATTRIBUTE(capability(name))
#define ZRM_SCOPED_CAPABILITY ZRM_THREAD_ATTRIBUTE(scoped_lockable)
#define ZRM_ACQUIRE(...) ZRM_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define ZRM_RELEASE(...) ZRM_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))

class ZRM_CAPABILITY("mutex") ZRMMutex {
  public:
    void lock() ZRM_ACQUIRE() { mutex_.lock(); }
    void unlock() ZRM_RELEASE() { mutex_.unlock(); }

  private:
    friend class ZRMConditionVariable;
    std::mutex mutex_;
};

// Waits with a ZRMMutex held, and lets go of it meanwhile; returns with it held, also for no
// reason. Who notifies lets go of the mutex first: the woken thread needs it at once.
class ZRMConditionVariable {
  public:
    void wait(ZRMMutex& mutex) ZRM_REQUIRES(mutex) {
        std::unique_lock held(mutex.mutex_, std::adopt_lock);
        notified_.wait(held);
        held.release();
    }
    // By the wall clock. False when the end passed first.
    bool waitUntil(ZRMMutex& mutex, std::chrono::system_clock::time_point end) ZRM_REQUIRES(mutex) {
        std::unique_lock held(mutex.mutex_, std::adopt_lock);
        const auto status = notified_.wait_until(held, end);
        held.release();
        return status == std::cv_status::no_timeout;
    }
    void notifyOne() { notified_.notify_one(); }

  private:
    std::condition_variable notified_;
};

// May be taken again by the thread that holds it.
class ZRM_CAPABILITY("mutex") ZRMRecursiveMutex {
  public:
    void lock() ZRM_ACQUIRE() { mutex_.lock(); }
    void unlock() ZRM_RELEASE() { mutex_.unlock(); }

  private:
    std::recursive_mutex mutex_;
};

// Holds a lock until the end of its block.
template <class Mutex>
class ZRM_SCOPED_CAPABILITY ZRMLockGuard {
  public:
    explicit ZRMLockGuard(Mutex& mutex) ZRM_ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
    ~ZRMLockGuard() ZRM_RELEASE() { mutex_.unlock(); }
    ZRMLockGuard(const ZRMLockGuard&) = delete;
    ZRMLockGuard& operator=(const ZRMLockGuard&) = delete;

  private:
    Mutex& mutex_;
};

// One that may let go of it in between.
template <class Mutex>
class ZRM_SCOPED_CAPABILITY ZRMUniqueLock {
  public:
    explicit ZRMUniqueLock(Mutex& mutex) ZRM_ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
    ~ZRMUniqueLock() ZRM_RELEASE() {
        if (isHeld_) {
            mutex_.unlock();
        }
    }
    ZRMUniqueLock(const ZRMUniqueLock&) = delete;
    ZRMUniqueLock& operator=(const ZRMUniqueLock&) = delete;

    void lock() ZRM_ACQUIRE() {
        mutex_.lock();
        isHeld_ = true;
    }
    void unlock() ZRM_RELEASE() {
        isHeld_ = false;
        mutex_.unlock();
    }

  private:
    Mutex& mutex_;
    bool isHeld_ = true;
};
