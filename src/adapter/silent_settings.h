#ifndef KVL_ADAPTER_SILENT_SETTINGS_H
#define KVL_ADAPTER_SILENT_SETTINGS_H

#include <array>
#include <cstddef>

// For providers too: constants, and functions that use only their arguments. Any thread may call; nothing blocks.

namespace kvl {

/// A setting that a silent install leaves.
struct Setting {
    const char* key;
    const char* line;
};

constexpr std::array<Setting, 4> kDiscoverySettings = {{
    {"ClientRemoteOperation", "ClientRemoteOperation:disabled"},
    {"ClientOperationMode", "ClientOperationMode:enabled"},
    {"ClientReadOnlyOperation", "ClientReadOnlyOperation:disabled"},
    {"TcpSocketPortNumber", "TcpSocketPortNumber:23333"},
}};

constexpr std::array<Setting, 5> kManagementSettings = {{
    {"ServerRemoteOperation", "ServerRemoteOperation:enabled"},
    {"ManagementHost", "ManagementHost:false"},
    {"SecureManagement", "SecureManagement:disabled"},
    {"MngmtHostIpAddress", "MngmtHostIpAddress:0"},
    {"ExclusiveHostMgmnt", "ExclusiveHostMgmnt:false"},
}};

/// A configuration file of the management tool.
struct SettingsFile {
    const char* path;
    const char* name;  ///< What its trace lines begin with.
    const Setting* first;
    std::size_t count;
    const char* failure;  ///< What is traced where it isn't as a silent install left it.

    const Setting* begin() const { return first; }
    const Setting* end() const { return first + count; }
};

// kept: the first failure's text has a bracket of its own.
constexpr std::array<SettingsFile, 2> kSettingsFiles = {{
    {"/etc/emulexDiscConfig", "emulexDiscConfig", kDiscoverySettings.data(), kDiscoverySettings.size(),
     "0 < iDiskKeyWordCount ) || ( iRet != true )"},
    {"/etc/emulexRMConfig", "emulexRMConfig", kManagementSettings.data(), kManagementSettings.size(),
     "( 0 < iRmKeyWordCount ) || ( iRet != true )"},
}};

}  // namespace kvl

#endif
