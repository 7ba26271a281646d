#include "machines/replay.h"

#include <link.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <set>
#include <sstream>

#include "machines/descriptor.h"

namespace kvl::machines {
namespace {

namespace fs = std::filesystem;

bool isRecording(const fs::path& directory) {
    std::error_code none;
    return !directory.empty() &&
           (fs::is_directory(directory / "commands", none) || fs::is_directory(directory / "files", none));
}

fs::path ownExecutable() {
    return fs::canonical("/proc/self/exe");
}

std::vector<fs::path> recordingPlaces() {
    std::vector<fs::path> places;
    if (const char* chosen = std::getenv("KVL_MACHINES"); chosen != nullptr && *chosen != '\0') {
        places.emplace_back(chosen);
    }
    places.push_back(ownExecutable().parent_path().parent_path() / "share/kvl/machines");
    places.emplace_back(KVL_SOURCE_MACHINES);
    places.emplace_back(KVL_BUILT_MACHINES);
    return places;
}

int addObjectDirectory(dl_phdr_info* object, std::size_t, void* set) {
    std::error_code error;
    const fs::path path = fs::canonical(object->dlpi_name, error);
    if (!error) {
        static_cast<std::set<std::string>*>(set)->insert(path.parent_path().string());
    }
    return 0;
}

bool isSystemLibraryDirectory(const std::string& path) {
    for (const std::string place : {"/usr/lib", "/usr/lib64", "/lib", "/lib64"}) {
        if (path == place || path.rfind(place + "/", 0) == 0) {
            return true;
        }
    }
    return false;
}

// Where this process loads its libraries from, except those that every private root has.
std::set<std::string> libraryDirectories(const fs::path& executable) {
    std::set<std::string> all;
    dl_iterate_phdr(addObjectDirectory, &all);
    std::error_code none;
    const fs::path beside = fs::canonical(executable.parent_path().parent_path() / "lib", none);
    if (!none) {
        all.insert(beside.string());
    }
    std::set<std::string> own;
    for (const std::string& directory : all) {
        if (!isSystemLibraryDirectory(directory) && directory != executable.parent_path()) {
            own.insert(directory);
        }
    }
    return own;
}

PrivateRootOptions optionsFor(const ReplayRequest& request, const fs::path& executable, int report) {
    PrivateRootOptions options;
    options.recording = findRecording(request.machine);
    options.missingReport = report;
    options.keptRoot = request.keptRoot;
    options.environment = request.environment;
    options.binds = {{executable.string()}};
    std::string search;
    for (const std::string& directory : libraryDirectories(executable)) {
        options.binds.push_back({directory});
        search += (search.empty() ? "" : ":") + directory;
    }
    if (!search.empty()) {
        options.environment.insert({"LD_LIBRARY_PATH", search});
    }
    options.binds.insert(options.binds.end(), request.binds.begin(), request.binds.end());
    return options;
}

void tellMissing(const std::string& machine, const std::string& report) {
    std::istringstream lines(report);
    std::set<std::string> told;
    for (std::string line; std::getline(lines, line);) {
        if (told.insert(line).second) {
            std::cerr << "the recording " << machine << " has nothing for: " << line << '\n';
        }
    }
}

}  // namespace

int replay(const ReplayRequest& request) {
    const fs::path executable = ownExecutable();
    const Descriptor report = memoryFile("");
    std::vector<std::string> program = {executable.string()};
    program.insert(program.end(), request.arguments.begin(), request.arguments.end());

    const int status = PrivateRoot(optionsFor(request, executable, report.number())).run(program);

    lseek(report.number(), 0, SEEK_SET);
    tellMissing(request.machine, readAll(report.number()));
    return status;
}

std::string findRecording(const std::string& machine) {
    if (machine.find('/') != std::string::npos || isRecording(machine)) {
        if (!isRecording(machine)) {
            throw UnknownMachine(machine +
                                 " is no recording: it has neither a directory commands nor a directory files.");
        }
        return fs::canonical(machine).string();
    }
    for (const fs::path& place : recordingPlaces()) {
        if (!machine.empty() && isRecording(place / machine)) {
            return fs::canonical(place / machine).string();
        }
    }
    std::string known;
    for (const std::string& name : knownMachines()) {
        known += (known.empty() ? "" : ", ") + name;
    }
    throw UnknownMachine("there is no recorded machine " + machine +
                         ". Known are: " + (known.empty() ? "none" : known));
}

std::vector<std::string> knownMachines() {
    std::set<std::string> names;
    for (const fs::path& place : recordingPlaces()) {
        std::error_code none;
        for (const fs::directory_entry& entry : fs::directory_iterator(place, none)) {
            if (isRecording(entry.path())) {
                names.insert(entry.path().filename().string());
            }
        }
    }
    return {names.begin(), names.end()};
}

}  // namespace kvl::machines
