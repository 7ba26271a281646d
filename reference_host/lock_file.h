#ifndef KVL_REFERENCE_HOST_LOCK_FILE_H
#define KVL_REFERENCE_HOST_LOCK_FILE_H

#include <string>

#include "reference_host/file_descriptor.h"
#include "reference_host/process_gate.h"

namespace kvl::host {

/// Opens the file that the processes of this machine lock, whoever runs them: `productFile`, or else `commonFile`.
/// The file and the directories of `productFile` are made if they are missing, readable for every user. Only a regular
/// file is taken, and not through a link, since others may write beside `commonFile`.
/// @return a new description of the file, closed when another program is started; none if neither can be opened
FileDescriptor openLockFile(const std::string& productFile, const std::string& commonFile);

/// Waits for the exclusive lock of an open file. A file that can't be locked at all counts as locked.
/// @param deadline  when to give up; never if empty
/// @return false if the time ran out
bool lockFile(int file, const Deadline& deadline);

/// Gives the lock back, also where a child process still holds the description.
void unlockFile(int file);

}  // namespace kvl::host

#endif
