#include <memory>

#include "provider/commands/answer.h"
#include "provider/commands/arguments.h"
#include "provider/commands/commands.h"
#include "provider/commands/options.h"
#include "provider/library/adapter_inventory.h"
#include "provider/library/working_tree.h"
#include "provider/output/text_block.h"
#include "provider/run/run.h"

namespace kvl::provider {
namespace {

constexpr const char* kHelp =
    "Examples:\n"
    "  kvl version 0b:00.1 --kind firmware\n"
    "  kvl version 0b:00.1 --kind driver --family cna --refresh\n"
    "\n"
    "Exit codes:\n"
    "  0   the version is told\n"
    "  2   wrong usage\n"
    "  3   there is none; the reason stands on standard error\n";

struct VersionOptions {
    std::string device;
    const ModuleKind* kind = nullptr;
    std::string family;  // empty: the port's own
    bool refresh = false;
    AnswerFormat format = AnswerFormat::kText;
    RunOptions run;
};

/// The family that has the only dump of the port in the cache; empty if none or both have one.
std::string familyInCache(const std::string& device) {
    const WorkingTree tree = WorkingTree::inUse();
    const bool isCna = tree.isCached(device, kCna);
    const bool isFc = tree.isCached(device, kFc);
    return isCna == isFc ? "" : isCna ? kCna : kFc;
}

/// Has the tool list the ports unless the cache answers.
/// @return the family to ask for
std::string prepare(const VersionOptions& options, const AdapterInventory& inventory) {
    std::string family = options.family.empty() ? familyInCache(options.device) : options.family;
    if (!options.refresh && !family.empty() && WorkingTree::inUse().isCached(options.device, family)) {
        return family;
    }
    inventory.refreshList();
    return options.family.empty() ? inventory.familyOf(options.device) : options.family;
}

/// The dumps of the two families name their ports in different words.
Failure withFamilyAdvice(Failure failure, const VersionOptions& options) {
    if (failure.name == kNoDumpName && !options.family.empty()) {
        failure.next += ", and whether --family is the port's";
    }
    return failure;
}

Answer findVersion(const VersionOptions& options) {
    Run run(options.run, Turn::kTake);
    const AdapterInventory inventory(run);
    const std::string family = prepare(options, inventory);
    const VersionAnswer found = inventory.version(options.device, *options.kind, options.refresh, family);
    if (found.failure) {
        throw AdapterFailure(withFamilyAdvice(*found.failure, options));
    }
    Answer answer;
    answer.text = printable(found.version) + "\n";
    answer.document = {
        {"device", options.device}, {"kind", options.kind->name}, {"family", family}, {"version", found.version}};
    return answer;
}

}  // namespace

void addVersionCommand(CLI::App& program, Request& request) {
    CLI::App& command = addCommand(program, "version", "Tell the version of a module that runs on a port", kHelp);
    const auto options = std::make_shared<VersionOptions>();
    addDevice(command, options->device);
    addKind(command, options->kind);
    addFamily(command, options->family, "The adapter's family (default: by the port's type)");
    addFlag(command, "--refresh", options->refresh, "Have a new dump made, and not the cached one read");
    addAnswerFormat(command, options->format);
    addRunOptions(command, options->run);
    whenChosen(command, [options, &request] {
        answerWith(request, options->format, [options] { return findVersion(*options); });
    });
}

}  // namespace kvl::provider
