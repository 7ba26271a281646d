#ifndef KVL_PROVIDER_UPDATE_OVERRIDE_FILES_H
#define KVL_PROVIDER_UPDATE_OVERRIDE_FILES_H

#include <string>
#include <vector>

#include "adapter/driver_overrides.h"

namespace kvl::provider {

/// The lines that a file doesn't hold as lines of their own.
std::vector<std::string> missingLines(const DriverOverride& file);

/// Ensures that the lines can be added where they are missing, and that the library will add them.
/// @throws ProviderError otherwise, with what to do
void requireOverrideFile(const DriverOverride& file);

}  // namespace kvl::provider

#endif
