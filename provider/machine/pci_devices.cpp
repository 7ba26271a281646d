#include "provider/machine/pci_devices.h"

#include <filesystem>
#include <system_error>

namespace kvl::provider {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDevices = "/sys/bus/pci/devices";

}  // namespace

bool isPciDevice(const std::string& location) {
    const std::string end = ":" + location;  // after the domain
    std::error_code error;
    for (fs::directory_iterator entry(kDevices, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.size() > end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace kvl::provider
