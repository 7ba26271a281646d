#ifndef KVL_TESTS_REFERENCE_HOST_PROCESSES_H
#define KVL_TESTS_REFERENCE_HOST_PROCESSES_H

#include <sys/mman.h>
#include <sys/types.h>

#include <functional>
#include <new>

namespace kvl::test {

/// Starts a child process that runs `work` and leaves with its result.
pid_t startChild(const std::function<int()>& work);

/// @return true as long as a child hasn't ended
bool isRunning(pid_t child);

/// Waits for a child. @return its exit code, or -1 if a signal ended it
int exitCodeOf(pid_t child);

/// Runs `work` in a child process, for what would change the test program itself. @return the exit code
int exitCodeOf(const std::function<int()>& work);

/// Turns this process, one of root, into an ordinary user's. Meant for a child. @return false if that's impossible
bool becomeAnotherUser();

/// An object that this process and its later children see in common.
template <typename Value>
class SharedValue {
public:
    SharedValue() : memory_(::mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
        if (memory_ == MAP_FAILED) {
            throw std::bad_alloc();
        }
        value_ = new (memory_) Value();
    }
    ~SharedValue() { ::munmap(memory_, sizeof(Value)); }

    SharedValue(const SharedValue&) = delete;
    SharedValue& operator=(const SharedValue&) = delete;

    Value& operator*() const { return *value_; }
    Value* operator->() const { return value_; }

private:
    void* memory_;
    Value* value_ = nullptr;
};

}  // namespace kvl::test

#endif
