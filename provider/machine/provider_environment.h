#ifndef KVL_PROVIDER_MACHINE_PROVIDER_ENVIRONMENT_H
#define KVL_PROVIDER_MACHINE_PROVIDER_ENVIRONMENT_H

#include <string>

#include "provider/machine/own_directory.h"

namespace kvl::provider {

/// Where the library's commands leave their output.
constexpr const char* kResultDirectory = "/opt/tarvenn/kvl/provider/tmp";

/// Gives the process what the library's commands need: messages in the language that the parsers read, commands from
/// the system's own directories, and files that nobody else can read.
void enterProviderEnvironment();

/// Ensures that the result directory is there and safe, since whoever can write there can say what the report holds.
/// @throws ProviderError otherwise, with what to do
void needResultDirectory(const std::string& directory = kResultDirectory);

}  // namespace kvl::provider

#endif
