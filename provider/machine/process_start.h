#ifndef KVL_PROVIDER_MACHINE_PROCESS_START_H
#define KVL_PROVIDER_MACHINE_PROCESS_START_H

namespace kvl::provider {

/// Gives the process what every program takes for granted, whatever its caller has left it: three standard streams, so
/// that no other file becomes one; children whose end it learns of; and writes that fail at a size limit rather than
/// kill it. A standard output that was closed takes nothing, so that a report for it is a failure.
void beginProcess();

}  // namespace kvl::provider

#endif
