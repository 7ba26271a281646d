#include "collector/CNetworkParameter.h"
#include "foundation/CTextFileParser.h"
#include "foundation/line_reader.h"
#include "foundation/operation_trace.h"

bool CNetworkParameter::GetResolvConf(ResolvConf& conf) {
    const kvl::OperationTrace trace(module_name, "bool CNetworkParameter::GetResolvConf(ResolvConf&)");
    trace.enter();
    conf.valid = false;
    if (ExecCommand("/bin/cat /etc/resolv.conf") < 0) {
        return false;
    }
    conf.valid = true;

    const auto addSuffix = [&](const std::string& suffix) {
        trace.detail("dns_suffix.push_back(%s)", suffix.c_str());
        conf.dns_suffix.push_back(suffix);
    };
    std::string line;
    std::string word;
    kvl::LinesBeginningKey nameservers(result_file, "nameserver");
    while (nameservers.next(line)) {
        CTextFileParser::GetStrInFixedPosition(line, 2, word);
        trace.detail("nameserver.push_back(%s)", word.c_str());
        conf.nameserver.push_back(word);
    }
    if (CTextFileParser::GetLineBeginningKey(result_file, "domain", 1, line)) {
        CTextFileParser::GetStrInFixedPosition(line, 2, word);
        addSuffix(word);
    }
    if (CTextFileParser::GetLineBeginningKey(result_file, "search", 1, line)) {
        for (int column = 2; CTextFileParser::GetStrInFixedPosition(line, column, word); ++column) {
            addSuffix(word);
        }
    }
    RemoveResultFile();
    trace.leave();
    return true;
}
