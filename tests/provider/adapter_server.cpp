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
ln -s "$built_modules" /modules
)";

machines::PrivateRootOptions serverOptions(const std::string& machine, const std::string& modules) {
    auto options = rootWithKvl(std::string(KVL_MACHINES_FOLDER) + "/" + machine);
    options.binds.push_back({modules});
    options.environment["program"] = KVL_PROGRAM;
    options.environment["no_waits"] = KVL_NO_WAITS;
    options.environment["odd_interfaces"] = KVL_ODD_INTERFACES;
    options.environment["last_words"] = KVL_LAST_WORDS;
    options.environment["built_modules"] = modules;
    return options;
}

}  // namespace

Outcome runOnServer(const std::string& script, const std::string& machine, const std::string& modules) {
    return runInside(serverOptions(machine, modules), kFunctions + script);
}

std::string typeOnceShown(const TypedOnceShown& typed, const std::string& script, const std::string& machine) {
    return runOnTerminalInside(serverOptions(machine, KVL_UPDATE_MODULES), kFunctions + script, typed);
}

std::string typeOnServer(const std::string& typed, const std::string& script, const std::string& machine) {
    return runOnTerminalInside(serverOptions(machine, KVL_UPDATE_MODULES), kFunctions + script, typed);
}

}  // namespace kvl::test
