#ifndef KVL_TESTS_MACHINES_RECORDING_CHECK_H
#define KVL_TESTS_MACHINES_RECORDING_CHECK_H

#include <string>
#include <vector>

namespace kvl::test {

/// What is wrong with the recording in this directory, one sentence each: entries of unknown commands, endings that are
/// none, interfaces without their ethtool entries, cards that lspci does not know, slaves and VLANs without an
/// interface, broken lines, and what adapterFaultsOf finds.
std::vector<std::string> faultsOf(const std::string& recording);

}  // namespace kvl::test

#endif
