#include "provider/library/adapter_watch.h"

#include <cstdlib>
#include <string_view>

#include "provider/library/trace_text.h"

namespace kvl::provider {
namespace {

constexpr std::string_view kLineBegins =
    "static int CEmulexCommon::ExecCommand_(std::string, std::string) ExecCommand_(";
constexpr std::string_view kLineEnds = ")";
constexpr std::string_view kFailureBegins = "static int CEmulexCommon::ExecCommand_(std::string, std::string) [";
constexpr std::string_view kLeaves = "[LEAVE] static int CEmulexCommon::ExecCommand_(std::string, std::string), rc=";
constexpr std::string_view kRedirection = " > ";
constexpr int kSignalBits = 0x7f;

std::string outcomeOf(int result) {
    if (result == 0) {
        return "";
    }
    return result < 0 ? "printed nothing in 10 s" : "was ended by signal " + std::to_string(result & kSignalBits);
}

}  // namespace

AdapterWatch::Event AdapterWatch::take(TRACE_DBG_LEVEL level, const std::string& text) {
    if (level == TRACE_DBG_FLOW && beginsWith(text, kLineBegins)) {
        const std::string line = text.substr(kLineBegins.size(), text.size() - kLineBegins.size() - kLineEnds.size());
        command_ = line.substr(0, line.find(kRedirection));
        outcome_.clear();
        return Event::kCommandBegins;
    }
    if (level == TRACE_DBG_ERROR && beginsWith(text, kFailureBegins)) {
        outcome_ = "failed";
        return Event::kCommandEnds;
    }
    if (level == TRACE_DBG_BOUNDARY && beginsWith(text, kLeaves)) {
        outcome_ = outcomeOf(std::atoi(text.c_str() + kLeaves.size()));
        return Event::kCommandEnds;
    }
    return Event::kNone;
}

std::string AdapterWatch::shownCommand() const {
    return command_.substr(command_.rfind('/', command_.find(' ')) + 1);
}

}  // namespace kvl::provider
