#include "tests/provider/adapter_server.h"

namespace kvl::test {
namespace {

constexpr const char* kFunctions = R"(
faults=/var/lib/hbacmd/faults
ports=/var/lib/hbacmd/ports
tree=/opt/tarvenn/kvl/tmp/EMULEX
tool=/usr/sbin/ocmanager/hbacmd
mkdir -p $faults
kvl() { LD_PRELOAD=$no_waits "$program" "$@"; }
run() { "$@"; echo "ended with $?"; }
fault() { echo "${2-}" >"$faults/$1"; }
cure() { rm -f $faults/*; }
remove_tool() { rm $tool; }
)";

}  // namespace

Outcome runOnServer(const std::string& script, const std::string& machine) {
    auto options = rootWithKvl(std::string(KVL_MACHINES_FOLDER) + "/" + machine);
    options.environment["program"] = KVL_PROGRAM;
    options.environment["no_waits"] = KVL_NO_WAITS;
    return runInside(options, kFunctions + script);
}

}  // namespace kvl::test
