#ifndef KVL_ADAPTER_UPDATE_FAMILIES_H
#define KVL_ADAPTER_UPDATE_FAMILIES_H

#include <array>
#include <string>

#include "adapter/adapter_record.h"

// For providers too: constants, and functions that use only their arguments. Any thread may call; nothing blocks.

namespace kvl {

/// How to update the adapters of one family.
struct UpdateFamily {
    const char* uniqueName;
    bool isBeginning;           ///< A name that begins so counts; otherwise it must be equal.
    bool updatesEveryFunction;  ///< Otherwise only function 0.
    const char* firmwarePattern;
    const char* bootCodePattern;  ///< Null without boot code of its own.
    const char* addressKey;       ///< What the adapter list calls the address that the tool wants.
    const char* noAddress;        ///< What is traced where it is missing.
};

constexpr const char* kNoMac = "Failed to get MAC Address";
constexpr const char* kNoWwn = "Failed to get WWPN";

constexpr std::array<UpdateFamily, 5> kUpdateFamilies = {{
    {"OCe11102", false, false, "*.ufi", nullptr, kMacKey, kNoMac},
    {"OCl14104", false, false, "*.ufi", nullptr, kMacKey, kNoMac},
    {"fcelx_16g", false, false, "*.grp", nullptr, kWwnKey, kNoWwn},
    {"fcelx_8g1p", false, true, "*.all", "*.prg", kWwnKey, kNoWwn},
    {"fcelx_8g2p", true, true, "*.all", "*.prg", kWwnKey, kNoWwn},
}};

/// @return the family of an adapter, null for an unknown name
inline const UpdateFamily* findUpdateFamily(const std::string& uniqueName) {
    for (const UpdateFamily& family : kUpdateFamilies) {
        const bool begins = uniqueName.rfind(family.uniqueName, 0) == 0;
        if (family.isBeginning ? begins : uniqueName == family.uniqueName) {
            return &family;
        }
    }
    return nullptr;
}

/// @return the command that sends a file of the unpacked module to the adapter
inline std::string downloadCommand(const std::string& tool, const std::string& address, const std::string& folder,
                                   const std::string& file) {
    return "\"" + tool + "\" Download " + address + " \"" + folder + "/" + file + "\"";
}

}  // namespace kvl

#endif
