#ifndef KVL_HOST_CMUTEXUTIL_H
#define KVL_HOST_CMUTEXUTIL_H

#include <memory>

/// A mutex of the loading process that excludes other threads and other processes. An object is for one thread, which
/// makes, locks and unlocks it.
class __attribute__((visibility("default"))) CMutexUtil {
public:
    CMutexUtil();

    /// Releases the mutex.
    ~CMutexUtil();

    CMutexUtil(const CMutexUtil&) = delete;
    CMutexUtil& operator=(const CMutexUtil&) = delete;

    /// Prepares the mutex. All mutexes made with the same arguments exclude one another.
    /// @param kind    always 1
    /// @param name    always null
    /// @param status  always null
    void Create(int kind, const char* name, int* status);

    /// Blocks the calling thread until it has the mutex.
    /// @param timeout  always -1, without limit
    void Lock(int timeout);

    /// Gives the mutex back.
    void Unlock();

private:
    struct Content;
    std::unique_ptr<Content> content_;
};

#endif
