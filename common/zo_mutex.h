// ZoMutex: owns one POSIX mutex with default attributes, initialised when the
// object is built and destroyed with it. Lock and Unlock may be called from any
// thread; the object itself is neither copied nor moved.
#ifndef ZO_COMMON_ZO_MUTEX_H
#define ZO_COMMON_ZO_MUTEX_H

#include <pthread.h>

class ZoMutex {
public:
    ZoMutex();
    ~ZoMutex();
    ZoMutex(const ZoMutex&) = delete;
    ZoMutex& operator=(const ZoMutex&) = delete;

    // Both return 0 on success or the pthread error number.
    int Lock();
    int Unlock();

private:
    pthread_mutex_t m_mutex;
};

// Holds a ZoMutex locked for the lifetime of the guard.
class ZoMutexGuard {
public:
    explicit ZoMutexGuard(ZoMutex& mutex) : m_mutex(mutex) { m_mutex.Lock(); }
    ~ZoMutexGuard() { m_mutex.Unlock(); }
    ZoMutexGuard(const ZoMutexGuard&) = delete;
    ZoMutexGuard& operator=(const ZoMutexGuard&) = delete;

private:
    ZoMutex& m_mutex;
};

#endif  // ZO_COMMON_ZO_MUTEX_H
