#ifndef KVL_MACHINES_REPLAY_H
#define KVL_MACHINES_REPLAY_H

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "machines/private_root.h"

namespace kvl::machines {

/// There is no recording of the requested name. The text lists the known names.
class UnknownMachine : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What to run on which recorded server.
struct ReplayRequest {
    /// A recording's directory, or the name of a recording that is installed with the program.
    std::string machine;
    /// Arguments of the program, without its name.
    std::vector<std::string> arguments;
    /// Directory that is the server's / and keeps its state between replays; empty: the server is new each time.
    std::string keptRoot;
    /// Variables beside the private root's own.
    std::map<std::string, std::string> environment;
    /// Files and directories of this machine that the program is to see.
    std::vector<Bind> binds;
};

/// Runs this same executable with the request's arguments on a recorded server, in a private root: the commands that it
/// runs and the files that it reads are the recording's. Standard streams are passed through. When it has ended, each
/// command line that the recording has nothing for is named on standard error.
///
/// Returns its exit status, or 128 and the signal that ended it.
/// Throws UnknownMachine if there is no such recording, PrivateRootError if no private root can be made.
int replay(const ReplayRequest& request);

/// The directory of a recording: `machine` itself if it is a recording's directory, otherwise the directory of that
/// name in $KVL_MACHINES, in ../share/kvl/machines beside the executable, or in the build that it comes from. Throws
/// UnknownMachine.
std::string findRecording(const std::string& machine);

/// The names that findRecording knows, sorted.
std::vector<std::string> knownMachines();

}  // namespace kvl::machines

#endif
