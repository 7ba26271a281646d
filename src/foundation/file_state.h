#ifndef KVL_FOUNDATION_FILE_STATE_H
#define KVL_FOUNDATION_FILE_STATE_H

#include <string>

namespace kvl {

/// @return true if the path can be opened for reading, whether a file or a directory
bool canOpen(const std::string& path);

/// @return true if `stat` of the path succeeds
bool isThere(const std::string& path);

/// @return true if `stat` of the path succeeds and gives a size above 0
bool hasContent(const std::string& path);

}  // namespace kvl

#endif
