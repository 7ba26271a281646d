#ifndef KVL_PROVIDER_UPDATE_PENDING_MARKS_H
#define KVL_PROVIDER_UPDATE_PENDING_MARKS_H

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "adapter/update_marks.h"

namespace kvl::provider {

/// A kind of update that can be marked as pending. The mark is a file in the working tree.
struct PendingKind {
    const char* name;  ///< on the command line
    int number;        ///< for the library

    const UpdateMark& mark() const { return kUpdateMarks[static_cast<std::size_t>(number) - 1]; }

    /// As it is listed.
    const char* title() const { return mark().text; }

    std::string markFile() const;
};

constexpr std::array<PendingKind, kUpdateMarks.size()> kPendingKinds = {{{"nic", 1}, {"fcoe", 2}, {"iscsi", 3}}};

using PendingKinds = std::vector<const PendingKind*>;

/// The kinds that are marked, in the order of the table.
/// @throws AdapterFailure if a mark is there and can't be read, since the library would pass over it
PendingKinds markedKinds();

/// Has the library mark a kind. @throws AdapterFailure if it can't
void markAsPending(const PendingKind& kind);

/// Ensures that marks can be deleted: a library that hands some back and leaves others would lose track.
/// @throws ProviderError if not, with what to do
void requireDeletableMarks(const PendingKinds& marked);

/// The titles of some kinds.
std::vector<std::string> titlesOf(const PendingKinds& kinds);

}  // namespace kvl::provider

#endif
