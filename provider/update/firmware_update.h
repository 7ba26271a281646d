#ifndef KVL_PROVIDER_UPDATE_FIRMWARE_UPDATE_H
#define KVL_PROVIDER_UPDATE_FIRMWARE_UPDATE_H

#include <optional>
#include <string>

#include "provider/library/adapter_inventory.h"
#include "provider/operation/library_call.h"
#include "provider/operation/operation.h"
#include "provider/update/firmware_plan.h"

namespace kvl::provider {

/// What runs on the adapter, as a new dump reports it.
struct RunningVersions {
    VersionAnswer firmware;
    VersionAnswer bootCode;

    bool areKnown() const { return !firmware.failure && !bootCode.failure; }
    bool operator==(const RunningVersions& other) const {
        return areKnown() && other.areKnown() && firmware.version == other.firmware.version &&
               bootCode.version == other.bootCode.version;
    }
};

/// The update of an adapter's firmware and boot code.
class FirmwareUpdate : public Operation {
public:
    FirmwareUpdate(const FirmwareRequest& request, Run& run) : request_(request), run_(run), inventory_(run) {}

    Subject subject() const override { return {plan_.family, "the firmware of " + plan_.device}; }
    std::string look() override;
    void readState() override { before_ = readVersions(); }
    Plan plan() const override;
    std::string question() const override { return "Update it now?"; }
    std::string source() const override { return plan_.uniqueName + " from " + plan_.module.archivePath(); }
    Ending carryOut(Execution& execution) override;
    std::vector<std::string> conclude(const Ending& ending) override;

private:
    RunningVersions readVersions() const;
    bool callLibrary();
    Ending stateAfter(const LibraryCall& call) const;
    std::string shownVersions(const RunningVersions& versions) const;
    std::string change() const;
    std::string marker() const { return plan_.workDirectory + "/UpdateProceeding.txt"; }

    const FirmwareRequest request_;
    Run& run_;
    const AdapterInventory inventory_;
    FirmwarePlan plan_;
    std::optional<RunningVersions> before_;  // none in a dry run
    RunningVersions after_;
    bool isUnmarked_ = false;  // the marker of the update could not be made
};

}  // namespace kvl::provider

#endif
