#ifndef KVL_PROVIDER_COMMANDS_REPORT_OUTPUT_H
#define KVL_PROVIDER_COMMANDS_REPORT_OUTPUT_H

#include <list>
#include <string>

#include "provider/commands/report_options.h"
#include "provider/machine/interface_names.h"
#include "provider/run/run.h"

namespace kvl::provider {

/// Checks, before a collection that can take minutes, that the report can be written to a file.
/// @param file  empty for standard output
/// @throws ProviderError if it can't
void checkOutputFile(const std::string& file);

/// Delivers the report where it was asked for. The library writes documents to files only, so a report that goes
/// elsewhere, or has another form, begins as a file in the result directory.
class ReportOutput {
public:
    /// @param file  where the file that was asked for is found, which in a private view is another place than the one
    ///              that was named; empty for standard output
    /// @param run   prints what goes to standard output
    ReportOutput(const ReportOptions& options, const std::string& file, const Run& run);
    ~ReportOutput();

    ReportOutput(const ReportOutput&) = delete;
    ReportOutput& operator=(const ReportOutput&) = delete;

    /// The file that the library is to write.
    const std::string& documentFile() const { return documentFile_; }

    /// Delivers what the library has written.
    /// @param written  whether the library could write its file
    /// @param names    by which the library knows the interfaces
    /// @throws ProviderError if something couldn't be written
    void finish(bool written, const std::list<std::string>& vendors, const InterfaceNames& names);

private:
    bool isTemporary() const { return documentFile_ != file_; }
    void removeTemporary() const;
    bool writeTarget(const std::string& content) const;

    const ReportOptions& options_;
    const Run& run_;
    std::string file_;
    std::string documentFile_;
};

}  // namespace kvl::provider

#endif
