#include "provider/run/progress_line.h"

namespace kvl::provider {

void ProgressLine::show(const std::string& text) {
    // A text that fills the last column would begin a new line.
    const std::string line = text.substr(0, width_ > 0 ? width_ - 1 : 0);
    const std::size_t rest = shown_ > line.size() ? shown_ - line.size() : 0;
    terminal_ << '\r' << line << std::string(rest, ' ') << std::flush;
    shown_ = line.size();
}

void ProgressLine::clear() {
    if (shown_ > 0) {
        terminal_ << '\r' << std::string(shown_, ' ') << '\r' << std::flush;
        shown_ = 0;
    }
}

}  // namespace kvl::provider
