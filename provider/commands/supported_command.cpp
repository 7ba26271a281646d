#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>

#include "host/CFileUtility.h"
#include "host/HostFunctions.h"
#include "provider/commands/answer.h"
#include "provider/commands/arguments.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/output/text_block.h"

namespace kvl::provider {
namespace {

using Texts = std::list<std::string>;

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl supported\n"
    "  kvl supported --family fc --format json\n"
    "\n"
    "Exit codes:\n"
    "  0   the catalogue is listed\n"
    "  1   the same, but one family's is missing or can't be right (named on standard error)\n"
    "  2   wrong usage\n"
    "  3   there is none that could be listed; the reason stands on standard error\n";

constexpr int kMostDevices = 10'000;

struct SupportedOptions {
    std::string family;  // empty: both
    AnswerFormat format = AnswerFormat::kText;
};

/// The catalogue of a family.
struct Catalogue {
    const char* family;
    const char* title;
    const char* file;
};

constexpr Catalogue kCatalogues[] = {
    {kCna, "CNA", "CnaVCFac.ini"},
    {kFc, "FC", "FcVCFac.ini"},
};

/// What a catalogue lists under one name.
struct Listing {
    const char* title;
    const char* name;
    Texts entries;
};

std::string pathOf(const Catalogue& catalogue) {
    return CFileUtility::GetInstallPath(0) + "/" + catalogue.file;
}

/// Why a file can't be read; nothing if it can.
std::optional<Failure> findFileFault(const std::string& path) {
    std::error_code unknown;
    if (!CFileUtility::IsFileExist(path)) {
        return ownFailure("no-catalogue", "there is no catalogue " + path, "the product's package brings it");
    }
    if (!std::filesystem::is_regular_file(path, unknown)) {
        return ownFailure("unreadable-catalogue", "the catalogue " + path + " is no regular file",
                          "remove it; the product's package brings it");
    }
    if (!std::ifstream(path).is_open()) {
        return ownFailure("unreadable-catalogue",
                          "the catalogue " + path + " can't be read (" + std::strerror(errno) + ")",
                          "see its mode, or run kvl as root");
    }
    return std::nullopt;
}

/// The library reads as many devices as the catalogue says, whether they are there or not.
std::optional<Failure> findSizeFault(const std::string& path) {
    constexpr int kNone = -1;
    const int size = GetPrivateProfileIntA("SuportDevice", "SuportDeviceNum", kNone, path.c_str());
    if (size < 0) {
        return ownFailure("bad-catalogue", path + " does not say how many devices it lists",
                          "correct its SuportDeviceNum");
    }
    if (size > kMostDevices) {
        return ownFailure("bad-catalogue",
                          path + " says that it lists " + std::to_string(size) + " devices, and more than " +
                              std::to_string(kMostDevices) + " are not read",
                          "correct its SuportDeviceNum");
    }
    return std::nullopt;
}

/// Why a catalogue can't be listed; nothing if it can.
std::optional<Failure> findFault(const Catalogue& catalogue) {
    const std::string path = pathOf(catalogue);
    const std::optional<Failure> fault = findFileFault(path);
    return fault ? fault : findSizeFault(path);
}

/// The one failure for all catalogues when none can be listed.
Failure joined(const std::vector<Gap>& gaps) {
    Failure all = *gaps.front().failure;
    for (auto gap = gaps.begin() + 1; gap != gaps.end(); ++gap) {
        all.meaning += "; " + gap->failure->meaning;
        all.next += gap->failure->next != all.next ? "; " + gap->failure->next : "";
    }
    return all;
}

Texts withoutRepetitions(Texts texts) {
    Texts once;
    for (const std::string& text : texts) {
        if (std::find(once.begin(), once.end(), text) == once.end()) {
            once.push_back(text);
        }
    }
    return once;
}

std::vector<Listing> read(const Catalogue& catalogue) {
    Texts devices0;
    Texts devices2;
    Texts devices4;
    Texts devicesFc;
    Texts hardware;
    Texts vendors;
    CEmulexCommon::GetDeviceIdList(catalogue.file, &devices0, &devices2, &devices4, &devicesFc, catalogue.family);
    CEmulexCommon::GetVenDevIdList(catalogue.file, &hardware, nullptr, nullptr, &hardware, catalogue.family);
    if (catalogue.family == std::string(kFc)) {
        return {{"Devices", "devices", devicesFc}, {"Hardware", "hardware", hardware}};
    }
    CEmulexCommon::GetVenderIdList(&vendors, catalogue.family);
    return {{"Devices ending 0", "devices_ending_0", devices0},
            {"Devices ending 2", "devices_ending_2", devices2},
            {"Devices ending 4", "devices_ending_4", devices4},
            {"Hardware", "hardware", hardware},
            {"Vendors", "vendors", withoutRepetitions(vendors)}};
}

void add(const Catalogue& catalogue, Answer& answer, Json& documents) {
    const std::string path = pathOf(catalogue);
    TextBlock block(std::string(catalogue.title) + "   " + path);
    Json entry = {{"family", catalogue.family}, {"file", path}};
    for (const Listing& listing : read(catalogue)) {
        block.addWrappedRow(listing.title, {listing.entries.begin(), listing.entries.end()});
        entry[listing.name] = listing.entries;
    }
    answer.text += (answer.text.empty() ? "" : "\n") + block.text();
    documents.push_back(entry);
}

Answer list(const SupportedOptions& options) {
    Answer answer;
    Json documents = Json::array();
    for (const Catalogue& catalogue : kCatalogues) {
        if (!options.family.empty() && options.family != catalogue.family) {
            continue;
        }
        if (const std::optional<Failure> fault = findFault(catalogue)) {
            answer.gaps.emplace_back("", *fault);
        } else {
            add(catalogue, answer, documents);
        }
    }
    if (documents.empty()) {
        throw AdapterFailure(joined(answer.gaps));
    }
    answer.document = {{"catalogues", documents}};
    answer.exitCode = answer.gaps.empty() ? kAnswered : kIncomplete;
    return answer;
}

}  // namespace

void addSupportedCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "supported", "List the adapters that are supported", kHelp);
    const auto options = std::make_shared<SupportedOptions>();
    addFamily(command, options->family, "List those of this family alone");
    addAnswerFormat(command, options->format);
    whenChosen(command,
               [options, &request] { answerWith(request, options->format, [options] { return list(*options); }); });
}

}  // namespace kvl::provider
