#ifndef KVL_LAN_REPORT_VALUES_H
#define KVL_LAN_REPORT_VALUES_H

namespace kvl {

constexpr const char* kBlank = " ";
constexpr const char* kPortFailure = "** (%s) Network configuration failure! **";

inline const char* portState(bool up) {
    return up ? "Enabled" : "Disabled";
}

/// @param unknown  the value for a setting that no file gave; it differs from section to section
inline const char* onboot(int value, const char* unknown) {
    if (value == -1) {
        return unknown;
    }
    return value == 0 ? "no" : "yes";
}

}  // namespace kvl

#endif
