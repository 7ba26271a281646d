#include <fstream>
#include <string>

#include "adapter/CEmulexCommon.h"
#include "adapter/adapter_trace.h"
#include "adapter/error_codes.h"
#include "adapter/update_failure.h"
#include "adapter/update_marks.h"
#include "adapter/working_tree.h"
#include "foundation/CCommon_Information.h"
#include "foundation/boundary_trace.h"

using kvl::AdapterTrace;
using kvl::kUpdateMarks;
using kvl::UpdateMark;

namespace {

const UpdateMark* findMark(int kind) {
    const bool isKnown = kind >= 1 && static_cast<std::size_t>(kind) <= kUpdateMarks.size();
    return isKnown ? &kUpdateMarks[static_cast<std::size_t>(kind) - 1] : nullptr;
}

}  // namespace

bool CEmulexCommon::SequentialUpadateFileWrite(int kind, std::string /*unused*/, std::string /*unused*/,
                                               std::string moduleName) {
    const kvl::BoundaryTrace boundaries(moduleName, "CEmulexCommon::SequentialUpadateFileWrite()");
    const UpdateMark* mark = findMark(kind);
    if (mark == nullptr) {
        return true;
    }
    const std::string path = kvl::workPath(mark->file);
    std::ofstream file(path, std::ios::app);
    if (!file.is_open()) {
        return kvl::fail(kvl::kFileNotOpened, AdapterTrace(moduleName), "Sequential File : %s", path);
    }
    file << mark->text << '\n';
    return true;
}

bool CEmulexCommon::SequentialUpadateFileRead(std::list<std::string>* kinds, std::string moduleName) {
    const kvl::BoundaryTrace boundaries(moduleName, "CEmulexCommon::SequentialUpadateFileRead()");
    const AdapterTrace trace(moduleName);
    kinds->clear();
    for (const UpdateMark& mark : kUpdateMarks) {
        const std::string path = kvl::workPath(mark.file);
        if (std::ifstream(path).is_open()) {
            kinds->push_back(mark.text);
        } else {
            SetLastError(kvl::kFileNotOpened);  // kept: the usual state, and still a code
            trace.flow("Failed to open file(%s).", path);
        }
    }
    for (const UpdateMark& mark : kUpdateMarks) {
        const std::string path = kvl::workPath(mark.file);
        if (!CCommon_Information::RetryDeleteFile(path)) {
            trace.warning("Failed to delete File [%s]", path);
            return false;
        }
    }
    return true;
}
