#ifndef KVL_ADAPTER_REPORT_FILE_H
#define KVL_ADAPTER_REPORT_FILE_H

#include <cstdio>
#include <memory>
#include <string>

#include "adapter/adapter_trace.h"
#include "adapter/report_lines.h"

namespace kvl {

/// A report file, open for reading.
class ReportFile {
public:
    explicit ReportFile(const std::string& path);

    bool isOpen() const { return file_ != nullptr; }

    /// @return the lines of a file that is open; they end with this object
    ReportLines lines() const { return ReportLines(file_.get()); }

    /// Sets the error code and writes the trace line of a file that could not be opened.
    void reportFailure(const AdapterTrace& trace) const;

private:
    std::string path_;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
    int openError_;
};

}  // namespace kvl

#endif
