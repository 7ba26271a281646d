#ifndef KVL_PROVIDER_LIBRARY_COLLECTED_COMMAND_H
#define KVL_PROVIDER_LIBRARY_COLLECTED_COMMAND_H

#include <string>

namespace kvl::provider {

/// What a command of the collection is for.
struct CollectedCommand {
    std::string subject;     ///< the interface or PCI device that it asks about; empty if it asks about the machine
    std::string what;        ///< what it reports, in words; empty for a command that isn't known
    bool isReported = true;  ///< false if the report has nothing of it, or is whole without it
};

/// @param command  a command line, without redirections
CollectedCommand describeCommand(const std::string& command);

}  // namespace kvl::provider

#endif
