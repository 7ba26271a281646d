#ifndef KVL_PROVIDER_OPERATION_STEP_H
#define KVL_PROVIDER_OPERATION_STEP_H

#include <string>
#include <vector>

#include "provider/library/trace_table.h"

namespace kvl::provider {

/// What is no longer as it was once a step has begun.
enum class Change {
    kNothing,
    kBootCode,
    kFirmware,
    kFirmwareDone,  ///< The updater has done its work; only kvl's own files change from here on.
    kInstalledTool,
    kNewTool,
    kOverrideFiles,
    kModuleDependencies,
    kRamDiskImage,
};

/// A step of what is done to the machine: written once, for the plan, for the operator who watches, and for the verdict
/// on a failure.
struct Step {
    std::vector<std::string> plan;          ///< Its lines in the plan.
    TraceEvent begins = TraceEvent::kNone;  ///< The event with which it begins; kNone for a step that isn't followed.
    std::string shown;                      ///< While it runs, as in "unpacking module.zip".
    Change changes = Change::kNothing;
    std::string output;  ///< File that an updater prints into; empty without one.
};

using Steps = std::vector<Step>;

}  // namespace kvl::provider

#endif
