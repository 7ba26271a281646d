#ifndef KVL_PROVIDER_LIBRARY_ADAPTER_TOOL_H
#define KVL_PROVIDER_LIBRARY_ADAPTER_TOOL_H

#include <string>

namespace kvl::provider {

/// The path of the adapter tool.
/// @throws AdapterFailure if it isn't installed, or can't be executed
std::string needTool();

}  // namespace kvl::provider

#endif
