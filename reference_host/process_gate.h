#ifndef KVL_REFERENCE_HOST_PROCESS_GATE_H
#define KVL_REFERENCE_HOST_PROCESS_GATE_H

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace kvl::host {

using Deadline = std::optional<std::chrono::steady_clock::time_point>;

/// A gate that one owner of this process passes at a time. A forked child finds it open, whoever held it in the
/// parent.
class ProcessGate {
public:
    enum class Outcome { kEntered, kAlreadyInside, kTimedOut };

    /// Waits for the gate. The thread that entered for an owner gets kAlreadyInside if it asks again for this owner;
    /// every other thread and owner waits.
    /// @param owner     address of the object that asks
    /// @param deadline  when to give up; never if empty
    Outcome enter(const void* owner, const Deadline& deadline);

    /// @return true if this owner is inside
    bool holds(const void* owner) const;

    /// Opens the gate if this owner is inside.
    void leave(const void* owner);

private:
    bool isOpen() const;
    bool isInside(const void* owner) const { return !isOpen() && owner_ == owner; }

    mutable std::mutex mutex_;
    std::condition_variable opened_;
    const void* owner_ = nullptr;
    std::thread::id thread_;
    pid_t process_ = -1;
};

}  // namespace kvl::host

#endif
