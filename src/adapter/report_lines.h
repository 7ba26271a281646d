#ifndef KVL_ADAPTER_REPORT_LINES_H
#define KVL_ADAPTER_REPORT_LINES_H

#include <array>
#include <cstdio>
#include <string>

namespace kvl {

/// The lines of an open report, from its position on. A line of more than 255 characters comes in pieces, each of which
/// counts as a line, and a line ends at its first zero byte. A read that fails is taken as the end of the report.
class ReportLines {
public:
    /// @param report  open for reading; must outlive this object, which never closes it
    explicit ReportLines(std::FILE* report) : report_(report) {}

    /// @param line  receives the next line with its line feed; at the end of the report it stays as it was
    /// @return false at the end of the report
    bool read(std::string& line);

    /// The same, with a blank in the place of each carriage return and line feed.
    bool readWithoutLineEnd(std::string& line);

private:
    std::FILE* report_;
    std::array<char, 256> buffer_{};
};

}  // namespace kvl

#endif
