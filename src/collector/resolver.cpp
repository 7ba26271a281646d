#include <fstream>

#include "collector/CNetworkParameter.h"
#include "collector/resolver_parser.h"
#include "foundation/operation_trace.h"

bool CNetworkParameter::GetResolvConf(ResolvConf& conf) {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::GetResolvConf(ResolvConf&)");
    trace.enter();
    conf.valid = false;
    if (ExecCommand("/bin/cat /etc/resolv.conf") < 0) {
        return false;
    }
    conf.valid = true;
    std::ifstream text(result_file);
    const ResolvConf found = kvl::parseResolvConf(text);
    for (const std::string& server : found.nameserver) {
        trace.detail("nameserver.push_back(%s)", server.c_str());
        conf.nameserver.push_back(server);
    }
    for (const std::string& suffix : found.dns_suffix) {
        trace.detail("dns_suffix.push_back(%s)", suffix.c_str());
        conf.dns_suffix.push_back(suffix);
    }
    RemoveResultFile();
    trace.leave();
    return true;
}
