#ifndef KVL_PROVIDER_UPDATE_FIRMWARE_PLAN_H
#define KVL_PROVIDER_UPDATE_FIRMWARE_PLAN_H

#include <string>
#include <vector>

#include "adapter/update_families.h"
#include "provider/library/adapter_inventory.h"
#include "provider/operation/step.h"
#include "provider/update/module_archive.h"

namespace kvl::provider {

/// What an operator asks for.
struct FirmwareRequest {
    std::string device;
    std::string moduleDirectory;
    std::string uniqueName;
    std::string family;   ///< empty: by the port's type
    std::string scratch;  ///< empty: in the working tree
};

/// An update of firmware and boot code that can be carried out, as far as can be seen beforehand.
struct FirmwarePlan {
    std::string device;
    std::string family;
    const UpdateFamily* updateFamily = nullptr;
    std::string uniqueName;
    UpdateModule module;
    std::string tool;
    std::string address;
    std::string firmware;
    std::string bootCode;       ///< empty without one
    std::string scratch;        ///< is deleted and made anew
    std::string workDirectory;  ///< of the adapter's class, in the working tree
    bool isJudgedByMessages = false;

    std::string resultDirectory() const { return workDirectory + "/firm"; }
    std::string resultFile() const { return resultDirectory() + "/temp_hbacmd_Download.txt"; }

    /// What will be done, in its order.
    Steps steps() const;
};

/// The number of a location's function.
int functionOf(const std::string& device);

/// Looks whether everything is there that the update needs. Nothing is changed.
/// @throws AdapterFailure, ProviderError with what is missing
FirmwarePlan planFirmwareUpdate(const FirmwareRequest& request, const AdapterInventory& inventory);

}  // namespace kvl::provider

#endif
