#ifndef KVL_PROVIDER_RUN_PROGRESS_LINE_H
#define KVL_PROVIDER_RUN_PROGRESS_LINE_H

#include <ostream>
#include <string>

namespace kvl::provider {

/// One line of a terminal that is written over and over, and is gone in the end.
class ProgressLine {
public:
    /// @param width  columns of the terminal; a longer text is cut
    ProgressLine(std::ostream& terminal, std::size_t width) : terminal_(terminal), width_(width) {}
    ~ProgressLine() { clear(); }

    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(const std::string& text);

    /// Leaves the cursor at the beginning of an empty line.
    void clear();

private:
    std::ostream& terminal_;
    std::size_t width_;
    std::size_t shown_ = 0;
};

}  // namespace kvl::provider

#endif
