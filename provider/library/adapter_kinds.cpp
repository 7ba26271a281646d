#include "provider/library/adapter_kinds.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace kvl::provider {

const ModuleKind& moduleKind(EMULEX_MODULE_KIND value) {
    const auto* found = std::find_if(std::begin(kModuleKinds), std::end(kModuleKinds),
                                     [value](const ModuleKind& kind) { return kind.value == value; });
    if (found == std::end(kModuleKinds)) {
        throw std::logic_error("a kind of module that no adapter tells the version of");
    }
    return *found;
}

bool isPlainPath(const std::string& path) {
    return path.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._+-") ==
           std::string::npos;
}

bool isPlainAddress(const std::string& address) {
    return address.find_first_not_of("0123456789ABCDEFabcdef:-") == std::string::npos;
}

}  // namespace kvl::provider
