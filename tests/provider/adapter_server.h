#ifndef KVL_TESTS_PROVIDER_ADAPTER_SERVER_H
#define KVL_TESTS_PROVIDER_ADAPTER_SERVER_H

#include <string>

#include "tests/provider/kvl_program.h"

namespace kvl::test {

/// A recorded server with adapters, on which a shell script runs. In the script, `kvl` is the program, in which no
/// time passes when it waits; `run COMMAND...` runs a command and prints how it ended; `fault NAME [NUMBER]` switches
/// a fault of the adapter tool on, `cure` switches all of them off, and `remove_tool` uninstalls it.
/// @param modules  a directory, which is /modules on the server
Outcome runOnServer(const std::string& script, const std::string& machine = "adapters-mixed",
                    const std::string& modules = KVL_UPDATE_MODULES);

/// The same on a terminal, on which something is typed. @return all that the terminal got
std::string typeOnServer(const std::string& typed, const std::string& script,
                         const std::string& machine = "adapters-mixed");

/// The same, where it is typed as soon as the terminal shows a text.
std::string typeOnceShown(const TypedOnceShown& typed, const std::string& script,
                          const std::string& machine = "adapters-mixed");

}  // namespace kvl::test

#endif
