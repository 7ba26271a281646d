#ifndef KVL_PROVIDER_UPDATE_BOOT_FILES_UPDATE_H
#define KVL_PROVIDER_UPDATE_BOOT_FILES_UPDATE_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "adapter/driver_overrides.h"
#include "provider/library/adapter_kinds.h"
#include "provider/library/working_tree.h"
#include "provider/operation/library_call.h"
#include "provider/operation/operation.h"
#include "provider/update/ram_disk_image.h"

namespace kvl::provider {

/// What an operator asks for.
struct BootFilesRequest {
    std::array<bool, kDriverOverrides.size()> isOverridden{};  ///< in the order of the files
    bool rebuilds = false;                                     ///< the RAM disk image
    bool restores = false;                                     ///< the former image, if that fails
};

/// The change that makes the boot files fit the updated drivers: overrides for depmod first, then the RAM disk image.
class BootFilesUpdate : public Operation {
public:
    BootFilesUpdate(const BootFilesRequest& request, Run& run);

    Subject subject() const override { return {kCna, "the boot files"}; }
    std::string look() override;
    Plan plan() const override;
    std::string source() const override;
    void prepare() override;
    Ending carryOut(Execution& execution) override;

private:
    void lookAtOverrides() const;
    void lookAtImage();
    Steps overrideSteps() const;
    Steps rebuildSteps() const;
    Ending addOverrides();
    std::string overrideTrouble(const LibraryCall& call) const;
    std::uint64_t footprint() const;
    Ending rebuild();
    Ending stateAfterFailedRebuild(const LibraryCall& call) const;
    Ending failHarmlessly(const std::string& sentence) const;

    const BootFilesRequest request_;
    Run& run_;
    const WorkingTree tree_ = WorkingTree::installed();
    std::vector<const DriverOverride*> files_;
    std::string kernel_;
    std::optional<RamDiskImage> image_;  // none where it isn't rebuilt
    std::string skipped_;                // why it isn't, although that was asked for
    bool areFilesChanged_ = false;
};

}  // namespace kvl::provider

#endif
