#ifndef KVL_MACHINES_DESCRIPTOR_H
#define KVL_MACHINES_DESCRIPTOR_H

#include <string>

#include "reference_host/file_descriptor.h"

namespace kvl::machines {

using Descriptor = host::FileDescriptor;

/// A file in memory that holds the text, closed at exec. Throws std::system_error if the system has none left.
Descriptor memoryFile(const std::string& text);

/// Everything that can be read from the descriptor, from where it stands to its end.
std::string readAll(int descriptor);

}  // namespace kvl::machines

#endif
