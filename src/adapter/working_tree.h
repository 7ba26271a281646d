#ifndef KVL_ADAPTER_WORKING_TREE_H
#define KVL_ADAPTER_WORKING_TREE_H

#include <string>

namespace kvl {

/// @return true if the module name selects the CNA family; any other text selects the FC family
bool isCna(const std::string& moduleName);

/// @return true if the module name is that of the FC family, for the few rules that hold only for this text
bool isFc(const std::string& moduleName);

/// @param tail  as in "temp/FC"
/// @return a path in the working tree
std::string workPath(const std::string& tail);

/// @return the directory of the cached dumps of a family
std::string cacheDirectory(const std::string& moduleName);

/// @return the file that `hbacmd listhbas` is printed into
std::string adapterListFile();

}  // namespace kvl

#endif
