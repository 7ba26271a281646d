#include "provider/commands/report_output.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "provider/machine/provider_environment.h"
#include "provider/output/report_document.h"
#include "provider/output/report_text.h"
#include "provider/output/text_block.h"
#include "provider/provider_error.h"
#include "reference_host/atomic_file.h"

namespace kvl::provider {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

bool writeFile(const std::string& path, const std::string& content) {
    host::AtomicFile file(path);
    return file.write(content.data(), content.size()) && file.commit();
}

/// The name as it stands in a document: without characters that act on a terminal, which XML can't hold.
std::string escapedName(const std::string& name) {
    std::string escaped;
    for (const char character : printable(name)) {
        switch (character) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += character;
        }
    }
    return escaped;
}

/// Puts the machine's names of the interfaces into the document. @return false if it can't be written
bool nameForPeople(const std::string& document, const InterfaceNames& names) {
    return names.empty() || writeFile(document, names.textForPeople(contentOf(document), escapedName));
}

std::string listed(const std::list<std::string>& vendors) {
    std::string text = vendors.empty() ? "no vendor" : vendors.size() == 1 ? "vendor " : "vendors ";
    for (const std::string& vendor : vendors) {
        text += (&vendor == &vendors.front() ? "" : ", ") + vendor;
    }
    return text;
}

}  // namespace

void checkOutputFile(const std::string& file) {
    if (file.empty()) {
        return;
    }
    std::error_code error;
    const fs::path parent = fs::path(file).parent_path();
    const fs::path directory = parent.empty() ? "." : parent;
    if (!fs::is_directory(directory, error)) {
        throw WrongUsage("-o " + file + ": there is no directory " + directory.string());
    }
    if (fs::exists(file, error) && !fs::is_regular_file(file, error)) {
        throw WrongUsage("-o " + file + " is no regular file; leave -o out to write to standard output");
    }
    if (access(directory.c_str(), W_OK) != 0) {
        throw WrongUsage("-o " + file + ": you can't write into the directory " + directory.string());
    }
}

ReportOutput::ReportOutput(const ReportOptions& options, const std::string& file, const Run& run)
    : options_(options), run_(run), file_(file), documentFile_(std::string(kResultDirectory) + "/report.xml") {
    if (options.format == Format::kXml && !file.empty()) {
        documentFile_ = file;
    }
}

ReportOutput::~ReportOutput() {
    removeTemporary();
}

void ReportOutput::removeTemporary() const {
    if (isTemporary()) {
        unlink(documentFile_.c_str());
    }
}

void ReportOutput::finish(bool written, const std::list<std::string>& vendors, const InterfaceNames& names) {
    const std::string target = options_.outputFile.empty() ? "standard output" : options_.outputFile;
    if (!written || !nameForPeople(documentFile_, names)) {
        throw ProviderError("the report could not be written to " + (isTemporary() ? documentFile_ : target) +
                            ": see whether the directory can be written and the disk has room");
    }
    const pugi::xml_document document = loadReport(documentFile_);
    if (isTemporary()) {
        const bool asText = options_.format == Format::kText;
        const std::string content = asText ? reportText(document) : contentOf(documentFile_);
        removeTemporary();  // now, since a reader that goes away ends this process
        if (!writeTarget(content)) {
            throw ProviderError("the report could not be written to " + target +
                                ": see whether it can be written and there is room for it");
        }
    }
    if (!options_.outputFile.empty()) {
        run_.print(target + ": " + countedContent(document) + " (" + listed(vendors) + ")\n");
    }
}

bool ReportOutput::writeTarget(const std::string& content) const {
    return file_.empty() ? run_.print(content) : writeFile(file_, content);
}

}  // namespace kvl::provider
