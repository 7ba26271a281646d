#ifndef KVL_REFERENCE_HOST_INSTALL_PATH_H
#define KVL_REFERENCE_HOST_INSTALL_PATH_H

#include <string>

namespace kvl::host {

/// The product's install directory as it is configured, without a "/" at its end: the environment variable
/// KVL_INSTALL_PATH, or /opt/tarvenn/kvl where that is unset or empty.
std::string configuredInstallPath();

/// The install directory in use: the configured one, or while there is a temporary installation, that one's.
std::string installPath();

/// An empty installation in another directory for a run that is to leave nothing: the host uses it instead of the
/// configured one as long as the object lives, and writes neither a trace file nor to the system log. One at a time.
class TemporaryInstallation {
public:
    /// @param directory  is the caller's
    explicit TemporaryInstallation(const std::string& directory);
    ~TemporaryInstallation();

    TemporaryInstallation(const TemporaryInstallation&) = delete;
    TemporaryInstallation& operator=(const TemporaryInstallation&) = delete;
};

/// @return true while there is a temporary installation
bool isInstallationTemporary();

}  // namespace kvl::host

#endif
