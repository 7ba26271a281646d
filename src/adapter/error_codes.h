#ifndef KVL_ADAPTER_ERROR_CODES_H
#define KVL_ADAPTER_ERROR_CODES_H

#include <array>

// For providers too: constants, and functions that use only their arguments. Any thread may call; nothing blocks.

namespace kvl {

/// Every code that the last error of `CEmulexCommon` can hold. 0 is the state before the first failure.
enum AdapterError : unsigned long {
    kInvalidArgument = 1,
    kNoDumpDirectory = 5,
    kNoDumpFile = 6,
    kDumpNotCached = 7,
    kUnknownModuleKind = 8,
    kNoVersion = 9,
    kNoTool = 11,
    kBadDeviceId = 13,
    kNoSuchAdapter = 14,
    kNoAdapters = 15,
    kDownloadFailed = 16,
    kFileNotOpened = 17,
    kNoCacheDirectory = 18,
    kNoTemporaryDirectory = 19,
    kNotUnpacked = 26,
    kNoAddress = 27,
    kUnpackFolderNotDeleted = 28,
    kWrongModuleContent = 29,
    kBadVersion = 30,
    kUpdateFailed = 33,
    kNoEndMessage = 36,
    kNoSuccessMessage = 37,
    kVersionsDiffer = 38,
};

/// One row of the table of codes.
struct AdapterErrorRow {
    AdapterError number;
    const char* name;     ///< Short, for programs: lower case with "-" between words.
    const char* meaning;  ///< For an operator; no full stop at its end.
};

/// The codes in rising order.
constexpr std::array<AdapterErrorRow, 23> kAdapterErrors = {{
    {kInvalidArgument, "invalid-argument", "A result pointer is null, or the marker of an update could not be deleted"},
    {kNoDumpDirectory, "no-dump-directory", "hbacmd did not tell its dump directory"},
    {kNoDumpFile, "no-dump-file", "hbacmd wrote no dump of this adapter in three tries"},
    {kDumpNotCached, "dump-not-cached", "The adapter's dump could not be copied to the cache"},
    {kUnknownModuleKind, "unknown-module-kind", "There is no operating version of this kind of module"},
    {kNoVersion, "no-version", "The adapter's dump does not tell the version"},
    {kNoTool, "no-tool", "hbacmd is not installed"},
    {kBadDeviceId, "bad-device-id", "The device identifier is not a valid PCI location"},
    {kNoSuchAdapter, "no-such-adapter", "No adapter in the list has this PCI location"},
    {kNoAdapters, "no-adapters", "The adapter list is empty, or tells nothing of the adapter"},
    {kDownloadFailed, "download-failed", "hbacmd failed to send a file to the adapter"},
    {kFileNotOpened, "file-not-opened", "A file could not be opened, or a step of an update failed"},
    {kNoCacheDirectory, "no-cache-directory", "A cache directory could not be made"},
    {kNoTemporaryDirectory, "no-temporary-directory", "A temporary directory could not be made"},
    {kNotUnpacked, "not-unpacked", "The update module could not be unpacked"},
    {kNoAddress, "no-address", "The adapter's address could not be had"},
    {kUnpackFolderNotDeleted, "unpack-folder-not-deleted", "The folder of an unpacked module could not be deleted"},
    {kWrongModuleContent, "wrong-module-content",
     "The update module lacks the expected file or holds too many, or its family is unknown"},
    {kBadVersion, "bad-version", "A version has the wrong form"},
    {kUpdateFailed, "update-failed", "An updater ran and failed"},
    {kNoEndMessage, "no-end-message", "The updater's output did not come to its end in time"},
    {kNoSuccessMessage, "no-success-message", "The updater's output does not report success"},
    {kVersionsDiffer, "versions-differ", "The versions are not equal"},
}};

/// @return the row of a code, null for any other number
constexpr const AdapterErrorRow* findAdapterError(unsigned long number) {
    for (const AdapterErrorRow& row : kAdapterErrors) {
        if (row.number == number) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace kvl

#endif
