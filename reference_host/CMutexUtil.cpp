#include "host/CMutexUtil.h"

#include <chrono>
#include <memory>
#include <optional>

#include "reference_host/file_descriptor.h"
#include "reference_host/install_path.h"
#include "reference_host/lock_file.h"
#include "reference_host/process_gate.h"

namespace {

using kvl::host::Deadline;
using kvl::host::FileDescriptor;
using kvl::host::ProcessGate;

// The threads of this process exclude each other at the gate, whoever passes it then waits for other processes.
// Never destroyed: a mutex may outlive this file's statics.
ProcessGate& gate() {
    static ProcessGate& instance = *std::make_unique<ProcessGate>().release();
    return instance;
}

FileDescriptor openMutexFile() {
    return kvl::host::openLockFile(kvl::host::installPath() + "/lock/kvl.mutex", "/dev/shm/kvl.mutex");
}

Deadline deadlineAfter(int milliseconds) {
    if (milliseconds < 0) {
        return std::nullopt;
    }
    return std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
}

}  // namespace

struct CMutexUtil::Content {
    FileDescriptor file;
};

CMutexUtil::CMutexUtil() : content_(std::make_unique<Content>()) {}

CMutexUtil::~CMutexUtil() {
    Unlock();
}

void CMutexUtil::Create(int /*kind*/, const char* /*name*/, int* status) {
    if (!content_->file.isOpen()) {
        content_->file = openMutexFile();
    }
    if (status != nullptr) {
        *status = 0;
    }
}

void CMutexUtil::Lock(int timeout) {
    const Deadline deadline = deadlineAfter(timeout);
    if (gate().enter(this, deadline) != ProcessGate::Outcome::kEntered) {
        return;
    }
    if (content_->file.isOpen() && !kvl::host::lockFile(content_->file.number(), deadline)) {
        gate().leave(this);
    }
}

void CMutexUtil::Unlock() {
    // Only the holder: a forked child has a copy of its parent's mutex and must not give that one's lock away.
    if (!gate().holds(this)) {
        return;
    }
    if (content_->file.isOpen()) {
        kvl::host::unlockFile(content_->file.number());
    }
    gate().leave(this);
}
