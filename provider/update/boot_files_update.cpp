#include "provider/update/boot_files_update.h"

#include <sys/stat.h>

#include <algorithm>

#include "adapter/CEmulexCommon.h"
#include "foundation/CCommon_Information.h"
#include "provider/output/text_block.h"
#include "provider/update/override_files.h"
#include "provider/update/requirements.h"

namespace kvl::provider {
namespace {

constexpr const char* kDepmodDirectory = "/etc/depmod.d";
constexpr const char* kBootDirectory = "/boot";
constexpr const char* kRebuiltRelease = "release 6";

/// @return what `uname -r` prints. @throws ProviderError if that is no release, since it goes into names of files
std::string runningKernel() {
    const std::string kernel = CCommon_Information::GetResultLine("uname -r");
    if (kernel.empty() || !isPlainPath(kernel) || kernel.find('/') != std::string::npos) {
        throw ProviderError("the running kernel can't be told: 'uname -r' says '" + printable(kernel) + "'; see why");
    }
    return kernel;
}

}  // namespace

BootFilesUpdate::BootFilesUpdate(const BootFilesRequest& request, Run& run) : request_(request), run_(run) {
    for (std::size_t row = 0; row < kDriverOverrides.size(); ++row) {
        if (request.isOverridden[row]) {
            files_.push_back(&kDriverOverrides[row]);
        }
    }
}

std::string BootFilesUpdate::look() {
    lookAtOverrides();
    if (request_.rebuilds) {
        lookAtImage();
    }
    return files_.empty() && !image_ ? skipped_ : "";
}

void BootFilesUpdate::lookAtOverrides() const {
    if (files_.empty()) {
        return;
    }
    requireCommand("depmod");
    struct stat status {};
    if (stat(kDepmodDirectory, &status) != 0 || !S_ISDIR(status.st_mode)) {
        throw ProviderError(std::string("there is no directory ") + kDepmodDirectory +
                            ": see whether this system's depmod reads one, and make it");
    }
    requireRoom(kDepmodDirectory, 0);
    for (const DriverOverride* file : files_) {
        requireOverrideFile(*file);
    }
}

void BootFilesUpdate::lookAtImage() {
    const std::string release = printable(CCommon_Information::GetResultLine("cat /etc/redhat-release"));
    if (release.find(kRebuiltRelease) == std::string::npos) {
        skipped_ = "the RAM disk image is rebuilt on a release 6 alone, and /etc/redhat-release " +
                   (release.empty() ? "tells none" : "says '" + release + "'");
        return;
    }
    requireCommand("mv");
    requireCommand("dracut");
    kernel_ = runningKernel();
    image_.emplace(kernel_, tree_.temporaryDirectory());
    if (!image_->size()) {
        throw ProviderError("the running kernel's RAM disk image " + image_->path() +
                            " isn't there, or is no file: make it by hand with 'dracut " + image_->path() + "'");
    }
    std::uint64_t needed = *image_->size();
    if (image_->isBrokenOff()) {
        run_.reportError("an earlier rebuild was broken off or failed: the former image is " + image_->formerPath() +
                         " and is moved back first; by hand: " + image_->restoreCommand());
        needed -= std::min(needed, image_->presentSize());  // which is given up
    }
    requireRoom(kBootDirectory, needed);
}

Plan BootFilesUpdate::plan() const {
    Plan plan;
    plan.title = "Update of the boot files";
    plan.skipped = skipped_;
    if (!skipped_.empty()) {
        plan.facts.push_back("skipped   " + skipped_);
    }
    if (image_) {
        plan.facts.push_back("kernel    " + kernel_);
        plan.facts.push_back("image     " + image_->path() + ", " + std::to_string(*image_->size()) + " bytes");
        plan.facts.emplace_back(request_.restores ? "if dracut fails, the former image is moved back"
                                                  : "if dracut fails, the former image is to be moved back by hand");
    }
    plan.steps = overrideSteps();
    const Steps more = rebuildSteps();
    plan.steps.insert(plan.steps.end(), more.begin(), more.end());
    return plan;
}

Steps BootFilesUpdate::overrideSteps() const {
    if (files_.empty()) {
        return {};
    }
    std::vector<std::string> lines;
    for (const DriverOverride* file : files_) {
        const std::vector<std::string> missing = missingLines(*file);
        lines.push_back(missing.empty()
                            ? "leave " + std::string(file->path) + " as it is: it holds the lines of " + file->driver
                            : "add to " + std::string(file->path) + ": " + joined(missing));
    }
    return {{lines, TraceEvent::kOverrideLines, "adding the override lines", Change::kOverrideFiles, ""},
            {{"depmod -a"}, TraceEvent::kDepmodStart, "depmod -a", Change::kModuleDependencies, ""}};
}

Steps BootFilesUpdate::rebuildSteps() const {
    if (!image_) {
        return {};
    }
    Steps steps;
    if (image_->isBrokenOff()) {
        steps.push_back({{image_->restoreCommand()}, TraceEvent::kNone, "", Change::kRamDiskImage, ""});
    }
    const std::string dracut = "dracut " + image_->path();
    steps.push_back({{"mv -f " + image_->path() + " " + image_->formerPath(), dracut},
                     TraceEvent::kImageRebuild,
                     dracut,
                     Change::kRamDiskImage,
                     ""});
    return steps;
}

std::string BootFilesUpdate::source() const {
    std::vector<std::string> parts;
    for (const DriverOverride* file : files_) {
        parts.push_back(std::string("overrides of ") + file->driver);
    }
    if (image_) {
        parts.push_back("RAM disk image of " + kernel_);
    }
    return joined(parts);
}

void BootFilesUpdate::prepare() {
    if (image_) {
        WorkingTree::inUse().make();  // for the note on it
    }
}

Ending BootFilesUpdate::carryOut(Execution& execution) {
    Ending ending;
    if (!files_.empty()) {
        ending = addOverrides();
    }
    if (!image_) {
        return ending;
    }
    if (ending.result != Result::kDone) {
        ending.sentence += "; the RAM disk image was not rebuilt";
        return ending;
    }
    if (!ending.sentence.empty()) {
        execution.reportDone(ending.sentence);
    }
    return execution.signal() == 0 ? rebuild()
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

Ending BootFilesUpdate::addOverrides() {
    const std::uint64_t before = footprint();
    const auto& wanted = request_.isOverridden;
    LibraryCall call(run_, overrideSteps());
    call.make([&wanted] { return CEmulexCommon::DepmodExecute(wanted[0], wanted[1], wanted[2], kCna); });
    areFilesChanged_ = footprint() != before;
    const std::string trouble = overrideTrouble(call);
    if (trouble.empty()) {
        return Ending::done(
            std::string(areFilesChanged_ ? "Added the override lines" : "The override lines were there") +
                ", and depmod has run",
            source());
    }
    const bool isChanged = areFilesChanged_ || !call.failedCommand().empty();
    return isChanged ? Ending::changed(trouble) : Ending::unchanged(trouble);
}

/// What is wrong after the library's call, whose answer doesn't report a full disk.
std::string BootFilesUpdate::overrideTrouble(const LibraryCall& call) const {
    std::string trouble;
    for (const DriverOverride* file : files_) {
        const std::vector<std::string> missing = missingLines(*file);
        const std::string path = file->path;
        if (!missing.empty()) {
            trouble += (trouble.empty() ? "" : "; ") + path +
                       (call.isUnopened(path) ? " could not be opened for writing: see what stands in its way"
                                              : " lacks " + joined(missing) +
                                                    ": see whether the disk has room, remove what was "
                                                    "written into that file, and run this again");
        }
    }
    const std::string failed = call.failedCommand();
    if (!failed.empty()) {
        trouble += (trouble.empty() ? "" : "; ") + failed +
                   ": see why, and run it by hand, since the lines that are in place have no effect before";
    }
    return trouble;
}

Ending BootFilesUpdate::rebuild() {
    if (image_->isBrokenOff()) {
        const std::string why = image_->restore();
        if (!why.empty()) {
            return failHarmlessly("the former image could not be moved back (" + why + "): do it by hand, with '" +
                                  image_->restoreCommand() + "'");
        }
    }
    if (!image_->note()) {
        return failHarmlessly("nothing can be written into " + tree_.temporaryDirectory() +
                              ": see whether the disk has room; the RAM disk image was not rebuilt");
    }
    LibraryCall call(run_, rebuildSteps());
    if (call.make([] { return CEmulexCommon::DracutExcute(kCna); }) && image_->isRebuilt()) {
        image_->forgetNote();
        return Ending::done("Rebuilt " + image_->path() + ", " + std::to_string(image_->presentSize()) +
                                " bytes; the former one is " + image_->formerPath(),
                            source());
    }
    return stateAfterFailedRebuild(call);
}

/// The state that a failure has left, repaired if that was asked for.
Ending BootFilesUpdate::stateAfterFailedRebuild(const LibraryCall& call) const {
    const std::string failed = call.failedCommand();
    const std::string what = failed.empty() ? "dracut wrote no image" : failed;
    if (image_->isUntouched()) {
        image_->forgetNote();
        return failHarmlessly(what + ", and " + image_->path() + " is as it was: see why, and run this again");
    }
    if (!request_.restores) {
        image_->noteFailure();
        return Ending::changed(what + "; the kernel " + kernel_ +
                               " has no whole RAM disk image now and can't be started: move the former one back, with "
                               "'" +
                               image_->restoreCommand() + "'");
    }
    const std::string why = image_->restore();
    if (!why.empty()) {
        return Ending::changed(what + "; the former image could not be moved back (" + why +
                               "): do it by hand, with '" + image_->restoreCommand() + "', or the kernel " + kernel_ +
                               " can't be started");
    }
    image_->forgetNote();
    return failHarmlessly(what + "; the former image was moved back: " + image_->path() + " is as it was");
}

/// A failure that has changed nothing itself.
Ending BootFilesUpdate::failHarmlessly(const std::string& sentence) const {
    return areFilesChanged_ ? Ending::changed(sentence + "; the override lines are in place")
                            : Ending::unchanged(sentence);
}

}  // namespace kvl::provider
