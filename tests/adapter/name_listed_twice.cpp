#include "tests/adapter/name_listed_twice.h"

#include <dirent.h>
#include <dlfcn.h>

#include <utility>

namespace kvl::test {

std::string& nameListedTwice() {
    static std::string name;
    return name;
}

}  // namespace kvl::test

/// Lists a directory, with one name twice where a test wants it so.
extern "C" struct dirent* readdir(DIR* directory) {
    static struct dirent* again = nullptr;
    if (again != nullptr) {
        return std::exchange(again, nullptr);
    }
    using Function = struct dirent*(DIR*);
    static Function* const next = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "readdir"));
    struct dirent* const entry = next(directory);
    if (entry != nullptr && kvl::test::nameListedTwice() == entry->d_name) {
        again = entry;
    }
    return entry;
}
