#ifndef KVL_PROVIDER_UPDATE_TOOL_UPDATE_H
#define KVL_PROVIDER_UPDATE_TOOL_UPDATE_H

#include <optional>
#include <string>

#include "provider/library/adapter_inventory.h"
#include "provider/library/working_tree.h"
#include "provider/operation/library_call.h"
#include "provider/operation/operation.h"
#include "provider/update/module_archive.h"

namespace kvl::provider {

/// What an operator asks for.
struct ToolRequest {
    std::string moduleDirectory;
    std::string family;  ///< whose operator messages are sent
    bool again = false;  ///< also if it was tried before
};

/// The tool as it is installed.
struct InstalledTool {
    bool isThere = false;
    std::string version;  ///< empty if it isn't known, as without an adapter

    bool operator==(const InstalledTool& other) const {
        return isThere == other.isThere && version == other.version && !(isThere && version.empty());
    }
    std::string shown() const;
};

/// The update of the management tool.
class ToolUpdate : public Operation {
public:
    ToolUpdate(const ToolRequest& request, Run& run) : request_(request), run_(run), inventory_(run) {}

    Subject subject() const override { return {request_.family, "the management tool"}; }
    std::string look() override;
    void readState() override { before_ = readTool(); }
    Plan plan() const override;
    std::string question() const override { return "Update the tool now?"; }
    std::string source() const override { return module_.archivePath(); }
    void prepare() override;
    Ending carryOut(Execution& execution) override;

private:
    InstalledTool readTool() const;
    Steps steps() const;
    bool callLibrary() const;
    Ending stateAfter(const LibraryCall& call, const InstalledTool& after) const;

    /// The output of the install script, whose mere existence keeps the library from updating.
    std::string installOutput() const { return tree_.temporary("temp_ocm_install.txt"); }

    const ToolRequest request_;
    Run& run_;
    const AdapterInventory inventory_;
    const WorkingTree tree_ = WorkingTree::installed();
    UpdateModule module_;
    std::string directory_;                // of the module, unpacked, for this machine
    std::optional<InstalledTool> before_;  // none in a dry run
};

}  // namespace kvl::provider

#endif
