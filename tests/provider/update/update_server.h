#ifndef KVL_TESTS_PROVIDER_UPDATE_UPDATE_SERVER_H
#define KVL_TESTS_PROVIDER_UPDATE_UPDATE_SERVER_H

#include <string>

#include "tests/provider/adapter_server.h"

namespace kvl::test {

/// A recorded server, as runOnServer has it, with more functions for the script:
///
///   firmware DEVICE MODULE [OPTION...]  runs an update with a module of /modules, whose family its name begins with,
///                                       without a question
///   update [OPTION...]                  updates 02:00.0 with OCe11102
///   tool_update MODULE [OPTION...]      the same for the management tool
///   run group_kvl ARGUMENT...           runs kvl in a process group of its own, whose number is in /tmp/kvl
///   versions                            prints the line of each port's dump that holds its firmware and boot code
///   during COMMAND SCRIPT               has a script run when the tool is called for this command, before it does it
///   after_unzip SCRIPT                  has a script run when a module is unpacked
///   instead_of_unzip SCRIPT             has it run instead of that
///   work_beside                         has another kvl work on 02:00.0 until `release`
///   state                               prints all files of the server with their modes and checksums, but for the log
///   ended                               prints the parts of the trace that operators get
///
/// $temp, $work and $list are the adapters' directory of temporary files, that of the family cna, and the tool's list.
Outcome updateOnServer(const std::string& script, const std::string& machine = "adapters-mixed",
                       const std::string& modules = KVL_UPDATE_MODULES);

/// The same on a terminal, on which something is typed. @return all that the terminal got
std::string typeDuringUpdate(const std::string& typed, const std::string& script,
                             const std::string& machine = "adapters-mixed");

}  // namespace kvl::test

#endif
