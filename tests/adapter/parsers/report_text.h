#ifndef KVL_TESTS_ADAPTER_PARSERS_REPORT_TEXT_H
#define KVL_TESTS_ADAPTER_PARSERS_REPORT_TEXT_H

#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "adapter/report_lines.h"

namespace kvl::test {

/// A report in memory, read as one in a file is.
class ReportText {
public:
    explicit ReportText(std::string text)
        : text_(std::move(text)), stream_(fmemopen(text_.data(), text_.size(), "r"), std::fclose) {}

    ReportLines lines() { return ReportLines(stream_.get()); }

private:
    std::string text_;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream_;
};

}  // namespace kvl::test

#endif
