#include "adapter/report_file.h"

#include <cerrno>

#include "adapter/CEmulexCommon.h"
#include "adapter/error_codes.h"

namespace kvl {

ReportFile::ReportFile(const std::string& path)
    : path_(path), file_(std::fopen(path.c_str(), "r"), std::fclose), openError_(errno) {}

void ReportFile::reportFailure(const AdapterTrace& trace) const {
    CEmulexCommon::SetLastError(kFileNotOpened);
    trace.error("File Open Error. file(%s) errcode(%d)", path_, openError_);
}

}  // namespace kvl
