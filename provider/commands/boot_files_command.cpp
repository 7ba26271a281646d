#include <sys/stat.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>

#include "adapter/CEmulexCommon.h"
#include "foundation/CCommon_Information.h"
#include "provider/commands/adapter_words.h"
#include "provider/commands/update_commands.h"
#include "provider/library/working_tree.h"
#include "provider/operation/boot_procedure.h"
#include "provider/operation/needs.h"
#include "provider/operation/update_run.h"
#include "provider/output/text_block.h"
#include "provider/run/noted_signals.h"
#include "provider/update/override_files.h"
#include "provider/update/ram_disk_image.h"

namespace kvl::provider {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kvl boot-files --override be2net,lpfc --dry-run\n"
    "  kvl boot-files --override be2net,lpfc,be2iscsi --rebuild-initramfs\n"
    "  kvl boot-files --rebuild-initramfs --restore-on-failure\n"
    "\n"
    "The overrides make depmod prefer the updated drivers. The RAM disk image is that of the\n"
    "running kernel; it is rebuilt on a release 6 alone, and the former one stays beside it with\n"
    "\".org\" behind its name. A signal that comes meanwhile is noted, and told in the end.\n"
    "\n";

constexpr const char* kDepmodDirectory = "/etc/depmod.d";
constexpr const char* kBootDirectory = "/boot";
constexpr const char* kRebuiltRelease = "release 6";

struct BootFilesOptions {
    std::array<bool, kDriverOverrides.size()> isOverridden{};  ///< in the order of the files
    bool rebuilds = false;
    bool restores = false;
    std::string tree;  ///< the working tree of the update itself, which isn't that of a dry run
    UpdateOptions update;
};

/// @return what `uname -r` prints. @throws ProviderError if that is no release, since it goes into names of files
std::string neededKernel() {
    const std::string kernel = CCommon_Information::GetResultLine("uname -r");
    if (kernel.empty() || !isPlainPath(kernel) || kernel.find('/') != std::string::npos) {
        throw ProviderError(kNothingChanged,
                            "the running kernel can't be told: 'uname -r' says '" + printable(kernel) + "'; see why");
    }
    return kernel;
}

/// One change of the boot files, from the look to the last check.
class BootFilesUpdate {
public:
    BootFilesUpdate(const BootFilesOptions& options, AdapterSession& session);

    ExitCode run();

private:
    void lookAtOverrides() const;
    void lookAtImage();
    std::string plan() const;
    void planOverrides(std::vector<std::string>& steps) const;
    void planRebuild(std::vector<std::string>& facts, std::vector<std::string>& steps) const;
    std::string subject() const;
    ExitCode carryOut();
    UpdateEnding change(const NotedSignals& signals);
    UpdateEnding addOverrides();
    std::string overrideTrouble(const BootProcedure& procedure) const;
    std::uint64_t footprint() const;
    UpdateEnding rebuild();
    UpdateEnding judgeRebuild(const BootProcedure& procedure) const;
    UpdateEnding failHarmlessly(const std::string& sentence) const;
    ExitCode skip() const;

    const BootFilesOptions& options_;
    AdapterSession& session_;
    std::vector<const DriverOverride*> files_;
    std::string kernel_;
    std::optional<RamDiskImage> image_;  // none where it isn't rebuilt
    std::string skipped_;                // why it isn't, although that was asked for
    bool areFilesChanged_ = false;
};

BootFilesUpdate::BootFilesUpdate(const BootFilesOptions& options, AdapterSession& session)
    : options_(options), session_(session) {
    for (std::size_t row = 0; row < kDriverOverrides.size(); ++row) {
        if (options.isOverridden[row]) {
            files_.push_back(&kDriverOverrides[row]);
        }
    }
}

ExitCode BootFilesUpdate::run() {
    lookAtOverrides();
    if (options_.rebuilds) {
        lookAtImage();
    }
    if (files_.empty() && !image_) {
        return skip();
    }
    session_.print(plan());
    if (options_.update.dryRun) {
        session_.print(kDryRunEnds);
        return skipped_.empty() ? kReportWritten : skip();
    }
    if (image_) {
        needAdapterTree();  // for the note on it
    }
    return carryOut();
}

ExitCode BootFilesUpdate::skip() const {
    if (!options_.update.dryRun) {
        UpdateRecord(kCna, "the boot files").skipped(skipped_);
    }
    tellError(session_, "skipped: " + skipped_);
    return kSkipped;
}

void BootFilesUpdate::lookAtOverrides() const {
    if (files_.empty()) {
        return;
    }
    needCommand("depmod");
    struct stat status {};
    if (stat(kDepmodDirectory, &status) != 0 || !S_ISDIR(status.st_mode)) {
        throw ProviderError(kNothingChanged, std::string("there is no directory ") + kDepmodDirectory +
                                                 ": see whether this system's depmod reads one, and make it");
    }
    needRoom(kDepmodDirectory, 0);
    for (const DriverOverride* file : files_) {
        needOverrideFile(*file);
    }
}

void BootFilesUpdate::lookAtImage() {
    const std::string release = printable(CCommon_Information::GetResultLine("cat /etc/redhat-release"));
    if (release.find(kRebuiltRelease) == std::string::npos) {
        skipped_ = "the RAM disk image is rebuilt on a release 6 alone, and /etc/redhat-release " +
                   (release.empty() ? "tells none" : "says '" + release + "'");
        return;
    }
    needCommand("mv");
    needCommand("dracut");
    kernel_ = neededKernel();
    image_.emplace(kernel_, options_.tree + "/temp");
    if (!image_->size()) {
        throw ProviderError(kNothingChanged, "the running kernel's RAM disk image " + image_->path() +
                                                 " isn't there, or is no file: make it by hand with 'dracut " +
                                                 image_->path() + "'");
    }
    std::uint64_t needed = *image_->size();
    if (image_->isBrokenOff()) {
        tellError(session_, "an earlier rebuild was broken off or failed: the former image is " + image_->formerPath() +
                                " and is moved back first; by hand: " + image_->restoreCommand());
        needed -= std::min(needed, image_->presentSize());  // which is given up
    }
    needRoom(kBootDirectory, needed);
}

std::string BootFilesUpdate::plan() const {
    std::vector<std::string> facts;
    std::vector<std::string> steps;
    planOverrides(steps);
    planRebuild(facts, steps);
    return describePlan("Update of the boot files", facts, steps);
}

void BootFilesUpdate::planOverrides(std::vector<std::string>& steps) const {
    for (const DriverOverride* file : files_) {
        const std::vector<std::string> missing = missingLines(*file);
        steps.push_back(missing.empty()
                            ? "leave " + std::string(file->path) + " as it is: it holds the lines of " + file->driver
                            : "add to " + std::string(file->path) + ": " + joined(missing));
    }
    if (!files_.empty()) {
        steps.emplace_back("depmod -a");
    }
}

void BootFilesUpdate::planRebuild(std::vector<std::string>& facts, std::vector<std::string>& steps) const {
    if (!skipped_.empty()) {
        facts.push_back("skipped   " + skipped_);
    }
    if (!image_) {
        return;
    }
    facts.push_back("kernel    " + kernel_);
    facts.push_back("image     " + image_->path() + ", " + std::to_string(*image_->size()) + " bytes");
    facts.push_back(options_.restores ? "if dracut fails, the former image is moved back"
                                      : "if dracut fails, the former image is to be moved back by hand");
    if (image_->isBrokenOff()) {
        steps.push_back(image_->restoreCommand());
    }
    steps.push_back("mv -f " + image_->path() + " " + image_->formerPath());
    steps.push_back("dracut " + image_->path());
}

std::string BootFilesUpdate::subject() const {
    std::vector<std::string> parts;
    for (const DriverOverride* file : files_) {
        parts.push_back(std::string("overrides of ") + file->driver);
    }
    if (image_) {
        parts.push_back("RAM disk image of " + kernel_);
    }
    return joined(parts);
}

ExitCode BootFilesUpdate::carryOut() {
    const NotedSignals signals(tellingSignals(session_));
    const UpdateRecord record(kCna, "the boot files");
    record.begun(subject());
    const UpdateEnding ending = change(signals);
    if (ending.exitCode == kReportWritten) {
        record.done(subject());
    } else {
        record.failed(ending.sentence);
        tellError(session_, ending.sentence);
    }
    if (signals.first() != 0) {
        return kInterrupted;
    }
    return ending.exitCode == kReportWritten && !skipped_.empty() ? skip() : ending.exitCode;
}

UpdateEnding BootFilesUpdate::change(const NotedSignals& signals) {
    UpdateEnding ending;
    if (!files_.empty()) {
        ending = addOverrides();
    }
    if (!image_) {
        return ending;
    }
    if (ending.exitCode != kReportWritten) {
        ending.sentence += "; the RAM disk image was not rebuilt";
        return ending;
    }
    return signals.first() == 0 ? rebuild()
                                : failHarmlessly("the RAM disk image was not rebuilt, since a signal came before");
}

/// The size of what the files hold, and how many there are: grows with whatever is added.
std::uint64_t BootFilesUpdate::footprint() const {
    std::uint64_t sum = 0;
    for (const DriverOverride* file : files_) {
        struct stat status {};
        sum += stat(file->path, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) + 1 : 0;
    }
    return sum;
}

UpdateEnding BootFilesUpdate::addOverrides() {
    const std::uint64_t before = footprint();
    const auto isWanted = [this](std::size_t row) { return options_.isOverridden[row]; };
    BootProcedure procedure(session_,
                            {{"CEmulexCommon::DepmodExecute() [START]", "adding the override lines", true, ""},
                             {"Execute depmod command ", "depmod -a", true, ""}});
    procedure.run([&] { return CEmulexCommon::DepmodExecute(isWanted(0), isWanted(1), isWanted(2), kCna); });
    areFilesChanged_ = footprint() != before;
    const std::string trouble = overrideTrouble(procedure);
    if (trouble.empty()) {
        session_.print(std::string(areFilesChanged_ ? "Added the override lines" : "The override lines were there") +
                       ", and depmod has run\n");
        return {};
    }
    const bool isChanged = areFilesChanged_ || !procedure.failedCommand().empty();
    return {isChanged ? kChanged : kNothingChanged, trouble};
}

/// What is wrong behind the library's call, whose answer doesn't tell a full disk.
std::string BootFilesUpdate::overrideTrouble(const BootProcedure& procedure) const {
    std::string trouble;
    for (const DriverOverride* file : files_) {
        const std::vector<std::string> missing = missingLines(*file);
        const std::string path = file->path;
        if (!missing.empty()) {
            trouble += (trouble.empty() ? "" : "; ") + path +
                       (procedure.isUnopened(path) ? " could not be opened for writing: see what stands in its way"
                                                   : " lacks " + joined(missing) +
                                                         ": see whether the disk has room, remove what was "
                                                         "written into that file, and run this again");
        }
    }
    const std::string failed = procedure.failedCommand();
    if (!failed.empty()) {
        trouble += (trouble.empty() ? "" : "; ") + failed +
                   ": see why, and run it by hand, since the lines that are in place have no effect before";
    }
    return trouble;
}

UpdateEnding BootFilesUpdate::rebuild() {
    if (image_->isBrokenOff()) {
        const std::string why = image_->restore();
        if (!why.empty()) {
            return failHarmlessly("the former image could not be moved back (" + why + "): do it by hand, with '" +
                                  image_->restoreCommand() + "'");
        }
    }
    if (!image_->note()) {
        return failHarmlessly("nothing can be written into " + options_.tree +
                              "/temp: see whether the disk has room; the RAM disk image was not rebuilt");
    }
    BootProcedure procedure(session_,
                            {{"CEmulexCommon::DracutExcute() [START]", "dracut " + image_->path(), true, ""}});
    if (procedure.run([] { return CEmulexCommon::DracutExcute(kCna); }) && image_->isRebuilt()) {
        image_->forgetNote();
        session_.print("Rebuilt " + image_->path() + ", " + std::to_string(image_->presentSize()) +
                       " bytes; the former one is " + image_->formerPath() + "\n");
        return {};
    }
    return judgeRebuild(procedure);
}

/// Tells the state that a failure has left, and mends it where that is wanted.
UpdateEnding BootFilesUpdate::judgeRebuild(const BootProcedure& procedure) const {
    const std::string failed = procedure.failedCommand();
    const std::string what = failed.empty() ? "dracut wrote no image" : failed;
    if (image_->isUntouched()) {
        image_->forgetNote();
        return failHarmlessly(what + ", and " + image_->path() + " is as it was: see why, and run this again");
    }
    if (!options_.restores) {
        image_->noteFailure();
        return {kChanged,
                what + "; the kernel " + kernel_ +
                    " has no whole RAM disk image now and can't be started: move the former one back, with '" +
                    image_->restoreCommand() + "'"};
    }
    const std::string why = image_->restore();
    if (!why.empty()) {
        return {kChanged, what + "; the former image could not be moved back (" + why + "): do it by hand, with '" +
                              image_->restoreCommand() + "', or the kernel " + kernel_ + " can't be started"};
    }
    image_->forgetNote();
    return failHarmlessly(what + "; the former image was moved back: " + image_->path() + " is as it was");
}

/// A failure that has changed nothing itself.
UpdateEnding BootFilesUpdate::failHarmlessly(const std::string& sentence) const {
    return areFilesChanged_ ? UpdateEnding{kChanged, sentence + "; the override lines are in place"}
                            : UpdateEnding{kNothingChanged, sentence};
}

int updateBootFiles(BootFilesOptions& options) {
    options.tree = adapterTree();
    const auto tree = passingTree(options.update);
    AdapterSession session(options.update.run);
    return BootFilesUpdate(options, session).run();
}

void addOverrides(CLI::App& command, BootFilesOptions& options) {
    const auto take = [&options](const std::vector<std::string>& names) {
        for (const std::string& name : names) {
            const auto* file = std::find_if(kDriverOverrides.begin(), kDriverOverrides.end(),
                                            [&](const DriverOverride& row) { return row.driver == name; });
            if (file == kDriverOverrides.end()) {
                throw CLI::ValidationError("--override: '" + name + "' is none of be2net,lpfc,be2iscsi");
            }
            options.isOverridden[static_cast<std::size_t>(file - kDriverOverrides.begin())] = true;
        }
    };
    command
        .add_option_function<std::vector<std::string>>("--override", take,
                                                       "Have depmod prefer the updated drivers: be2net,lpfc,be2iscsi")
        ->delimiter(',')
        ->type_name("LIST")
        ->allow_extra_args(false);
}

void needTask(const CLI::App& command) {
    if (command.count("--override") == 0 && command.count("--rebuild-initramfs") == 0) {
        throw CLI::ValidationError("boot-files needs --override or --rebuild-initramfs, or both");
    }
}

}  // namespace

void addBootFilesCommand(CLI::App& program, Request& request) {
    CLI::App* command = program.add_subcommand("boot-files", "Make the boot files fit the updated drivers");
    command->footer(std::string(kExamples) + kUpdateExitCodesHelp);
    const auto options = std::make_shared<BootFilesOptions>();
    addOverrides(*command, *options);
    CLI::Option* rebuild =
        command->add_flag("--rebuild-initramfs", options->rebuilds, "Rebuild the RAM disk image of the running kernel");
    command->add_flag("--restore-on-failure", options->restores, "Move the former image back if that fails")
        ->needs(rebuild);
    command->add_flag("--dry-run", options->update.dryRun, "Look and show the plan, and change nothing");
    addRunOptions(*command, options->update.run);
    command->callback([command, options, &request] {
        needTask(*command);
        request.run = [options] { return runUpdate([options] { return updateBootFiles(*options); }); };
    });
}

}  // namespace kvl::provider
