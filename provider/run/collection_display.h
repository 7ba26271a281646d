#ifndef KVL_PROVIDER_RUN_COLLECTION_DISPLAY_H
#define KVL_PROVIDER_RUN_COLLECTION_DISPLAY_H

#include <ostream>
#include <string>
#include <vector>

#include "host/CTraceUtility.h"
#include "provider/run/progress_line.h"

namespace kvl::provider {

/// What the operator sees of a collection while it runs.
class CollectionDisplay {
public:
    enum class Mode { kNothing, kProgress, kTrace };

    /// @param width  columns of the terminal
    CollectionDisplay(Mode mode, std::ostream& output, std::size_t width);

    /// Names the interfaces whose drivers are asked one after the other.
    void setInterfaces(const std::vector<std::string>& interfaces) { interfaces_ = interfaces; }

    void showTrace(TRACE_DBG_LEVEL level, const std::string& text);
    void showCommand(const std::string& command);

    /// Tells that the command has printed nothing so far, a second after the last such call.
    void showWait(const std::string& command);

    /// Tells a pause that the library makes.
    void showPause(unsigned long milliseconds);

    void clear() { line_.clear(); }

private:
    std::string place(const std::string& interface) const;

    Mode mode_;
    std::ostream& output_;
    ProgressLine line_;
    std::vector<std::string> interfaces_;
    int waited_ = 0;
};

}  // namespace kvl::provider

#endif
