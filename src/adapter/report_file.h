#ifndef KVL_ADAPTER_REPORT_FILE_H
#define KVL_ADAPTER_REPORT_FILE_H

#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "adapter/adapter_trace.h"

namespace kvl {

/// Reads a report file from its start. A line of more than 255 characters comes in pieces, each of which counts as a
/// line, and a line ends at its first zero byte. A read that fails is taken as the end of the file.
class ReportFile {
public:
    explicit ReportFile(const std::string& path);

    bool isOpen() const { return file_ != nullptr; }

    /// @param line  receives the next line with its line feed; at the end of the file it stays as it was
    /// @return false at the end of the file
    bool readLine(std::string& line);

    /// Sets the error code and writes the trace line of a file that could not be opened.
    void reportFailure(const AdapterTrace& trace) const;

private:
    std::string path_;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
    int openError_;
    std::array<char, 256> buffer_{};
};

}  // namespace kvl

#endif
