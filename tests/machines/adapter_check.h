#ifndef KVL_TESTS_MACHINES_ADAPTER_CHECK_H
#define KVL_TESTS_MACHINES_ADAPTER_CHECK_H

#include <string>
#include <vector>

namespace kvl::test {

/// What is wrong with the adapters of the recording in this directory, one sentence each: the tool without its state or
/// the state without the tool, ports that the tool can't distinguish or report as its readers want it, dumps that
/// describe another port or lack a version, locations, drivers and network cards that the server's other commands do
/// not know, device catalogues that don't hold what they count. A recording without adapters has none.
std::vector<std::string> adapterFaultsOf(const std::string& recording);

}  // namespace kvl::test

#endif
