#include "reference_host/trace_log.h"

#include <atomic>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <utility>

#include "reference_host/formatted_text.h"
#include "reference_host/install_path.h"
#include "reference_host/system_log.h"
#include "reference_host/trace_file.h"
#include "reference_host/trace_observer.h"

namespace kvl::host {
namespace {

constexpr unsigned kDefaultLevels = TRACE_DBG_ERROR | TRACE_DBG_WARNING;

struct LevelName {
    TRACE_DBG_LEVEL level;
    const char* name;
};

constexpr LevelName kLevelNames[] = {
    {TRACE_DBG_FLOW, "FLOW"},       {TRACE_DBG_ERROR, "ERROR"},   {TRACE_DBG_BOUNDARY, "BOUNDARY"},
    {TRACE_DBG_WARNING, "WARNING"}, {TRACE_DBG_NOTICE, "NOTICE"},
};

std::string levelName(TRACE_DBG_LEVEL level) {
    for (const LevelName& entry : kLevelNames) {
        if (entry.level == level) {
            return entry.name;
        }
    }
    return std::to_string(static_cast<int>(level));
}

unsigned levelsOfText(const char* text) {
    if (text == nullptr) {
        return kDefaultLevels;
    }
    unsigned levels = 0;
    const char* end = text + std::strlen(text);
    const std::from_chars_result result = std::from_chars(text, end, levels);
    return result.ec == std::errc() && result.ptr == end ? levels : kDefaultLevels;
}

// The trace of this process.
class TraceLog {
public:
    TraceLog() { reload(); }

    void reload() {
        TraceSettings settings = traceSettingsOfEnvironment();
        auto file = std::make_shared<TraceFile>(std::move(settings.file));
        const std::lock_guard<std::mutex> lock(mutex_);
        file_.swap(file);
        levels_.store(settings.levels);
    }

    bool takes(TRACE_DBG_LEVEL level) const { return (levels_.load() & static_cast<unsigned>(level)) != 0; }

    void write(const std::string& label, const std::string& module, const std::string& text) {
        file()->write(label + " [" + onOneLine(module) + "] " + onOneLine(text));
    }

private:
    std::shared_ptr<TraceFile> file() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return file_;
    }

    std::atomic<unsigned> levels_{0};
    std::mutex mutex_;
    std::shared_ptr<TraceFile> file_;
};

// Never destroyed: objects that outlive this file's statics may still trace.
TraceLog& traceLog() {
    static TraceLog& instance = *std::make_unique<TraceLog>().release();
    return instance;
}

}  // namespace

TraceSettings traceSettingsOfEnvironment() {
    TraceSettings settings;
    const char* file = std::getenv("KVL_TRACE_FILE");
    settings.file = isInstallationTemporary()          ? "/dev/null"
                    : file != nullptr && *file != '\0' ? file
                                                       : installPath() + "/log/kvl.log";
    settings.levels = levelsOfText(std::getenv("KVL_TRACE_LEVELS"));
    return settings;
}

void reloadTraceSettings() {
    traceLog().reload();
}

bool wantsLevel(TRACE_DBG_LEVEL level) {
    return traceLog().takes(level) || hasTraceObserver();
}

void recordDebugLine(const std::string& module, TRACE_DBG_LEVEL level, const std::string& text) noexcept {
    notifyTraceObserver(module, level, text);
    try {
        if (traceLog().takes(level)) {
            traceLog().write(levelName(level), module, text);
        }
    } catch (...) {
    }
}

void recordOperatorMessage(const std::string& module, const std::string& text) noexcept {
    try {
        traceLog().write("OPERATOR", module, text);
        writeSystemLog(text);
    } catch (...) {
    }
}

}  // namespace kvl::host
