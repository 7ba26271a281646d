#include "provider/update/pending_marks.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>

#include "adapter/CEmulexCommon.h"
#include "provider/library/adapter_failure.h"
#include "provider/library/adapter_kinds.h"
#include "provider/library/working_tree.h"

namespace kvl::provider {
namespace {

bool isMarked(const PendingKind& kind) {
    const std::string path = kind.markFile();
    if (std::ifstream(path).is_open()) {
        return true;
    }
    if (errno == ENOENT || errno == ENOTDIR) {
        return false;
    }
    Failure failure = failureOf(kFileNotOpened);
    failure.meaning =
        path + " can't be read, so whether " + kind.title() + " is pending can't be told: " + std::strerror(errno);
    failure.next = "run this as the user whose file it is, or mend the file";
    throw AdapterFailure(failure);
}

}  // namespace

std::string PendingKind::markFile() const {
    return WorkingTree::inUse().path() + "/" + mark().file;
}

PendingKinds markedKinds() {
    PendingKinds marked;
    for (const PendingKind& kind : kPendingKinds) {
        if (isMarked(kind)) {
            marked.push_back(&kind);
        }
    }
    return marked;
}

void markAsPending(const PendingKind& kind) {
    CEmulexCommon::SetLastError(0);
    if (!CEmulexCommon::SequentialUpadateFileWrite(kind.number, "", "", kCna)) {
        Failure failure = lastFailure();
        failure.meaning = kind.title() + std::string(" is not marked: ") + kind.markFile() + " can't be written";
        failure.next =
            "see whether the file and its directory can be written, and whether the disk has room; 'kvl "
            "pending' lists what is marked";
        throw AdapterFailure(failure);
    }
}

void requireDeletableMarks(const PendingKinds& marked) {
    const std::string directory = WorkingTree::inUse().temporaryDirectory();
    if (!marked.empty() && access(directory.c_str(), W_OK) != 0) {
        throw ProviderError("nothing was taken: the marks in " + directory + " can't be deleted (" +
                            std::strerror(errno) +
                            "): run this as the user whose directory it is, or make it writable");
    }
}

std::vector<std::string> titlesOf(const PendingKinds& kinds) {
    std::vector<std::string> titles;
    for (const PendingKind* kind : kinds) {
        titles.emplace_back(kind->title());
    }
    return titles;
}

}  // namespace kvl::provider
