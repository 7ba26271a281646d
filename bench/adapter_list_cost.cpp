// How the list of adapters grows with the ports: time, lines and bytes read for 64 and for 640 ports, and the exponent
// between them, next to a bare loop that only makes the same passes over the file. The nth key of the
// file belongs to the nth port and each lookup reads from the start, so six passes a port make 2 unavoidable.
//
// usage: adapter_list_cost

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "adapter/CEmulexCommon.h"

namespace {

constexpr int kFewPorts = 64;
constexpr int kManyPorts = 640;
constexpr const char* kKeys[] = {"Port WWN",     "Port Number", "PCI Bus Number",
                                 "PCI Function", "Port Type",   "Serial No."};

struct Cost {
    double seconds = 0;
    long bytes = 0;
};

void writeListing(const std::string& path, int ports) {
    std::ofstream file(path);
    for (int port = 0; port < ports; ++port) {
        file << "Port WWN       : 10:00:00:00:c9:00:00:00\nNode WWN       : 20:00:00:00:c9:00:00:00\n"
             << "Port Number    : 0\nPCI Bus Number : " << port % 9 << "\nPCI Function   : 0\n"
             << "Port Type      : FC\nSerial No.     : VM" << port << "\nModel          : LPe16002\n\n";
    }
}

/// Bytes that this process has read so far.
long bytesRead() {
    std::ifstream io("/proc/self/io");
    std::string word;
    long bytes = 0;
    while (io >> word) {
        if (word == "rchar:") {
            io >> bytes;
        }
    }
    return bytes;
}

template <typename Work>
Cost costOf(Work work) {
    Cost cost;
    const long before = bytesRead();
    const auto start = std::chrono::steady_clock::now();
    work();
    cost.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    cost.bytes = bytesRead() - before;
    return cost;
}

/// The passes alone: for each port and key, from the start of the file to the line that decides.
long passOver(const std::string& path, int ports) {
    long lines = 0;
    char line[256];
    for (int port = 0; port <= ports; ++port) {
        for (const char* key : kKeys) {
            std::FILE* file = std::fopen(path.c_str(), "r");
            int met = -1;
            while (met < port && std::fgets(line, sizeof line, file) != nullptr) {
                ++lines;
                met += std::strstr(line, key) != nullptr ? 1 : 0;
            }
            std::fclose(file);
            if (port == ports) {
                break;  // after the last port only the first key is looked for
            }
        }
    }
    return lines;
}

Cost listAdapters(int ports) {
    std::list<std::map<std::string, std::string>> records;
    const Cost cost = costOf([&] { CEmulexCommon::GetHBAInfoList(&records, "fc"); });
    if (records.size() != static_cast<std::size_t>(ports)) {
        std::fprintf(stderr, "adapter_list_cost: %zu of %d ports were listed\n", records.size(), ports);
        std::exit(1);
    }
    return cost;
}

double exponent(double few, double many) {
    return std::log(many / few) / std::log(double{kManyPorts} / kFewPorts);
}

}  // namespace

int main() {
    namespace fs = std::filesystem;
    std::string scratch = (fs::temp_directory_path() / "kvl-bench-XXXXXX").string();
    if (mkdtemp(scratch.data()) == nullptr || setenv("KVL_INSTALL_PATH", scratch.c_str(), 1) != 0) {
        std::perror("adapter_list_cost");
        return 1;
    }
    if (!CEmulexCommon::CreateLocalDirectory()) {
        std::fputs("adapter_list_cost: no working tree\n", stderr);
        return 1;
    }
    const std::string listing = scratch + "/tmp/EMULEX/temp/Listhbas.txt";
    Cost list[2];
    Cost bare[2];
    for (const int many : {0, 1}) {
        const int ports = many == 1 ? kManyPorts : kFewPorts;
        writeListing(listing, ports);
        long lines = 0;
        bare[many] = costOf([&] { lines = passOver(listing, ports); });
        list[many] = listAdapters(ports);
        std::printf(
            "%4d ports: list %9.3f ms, %10ld bytes read; bare passes %9.3f ms, %10ld bytes, %8ld lines; ratio %.2f\n",
            ports, list[many].seconds * 1000, list[many].bytes, bare[many].seconds * 1000, bare[many].bytes, lines,
            list[many].seconds / bare[many].seconds);
    }
    std::printf("exponent of growth: time %.2f (bare %.2f), bytes %.2f (bare %.2f)\n",
                exponent(list[0].seconds, list[1].seconds), exponent(bare[0].seconds, bare[1].seconds),
                exponent(static_cast<double>(list[0].bytes), static_cast<double>(list[1].bytes)),
                exponent(static_cast<double>(bare[0].bytes), static_cast<double>(bare[1].bytes)));
    fs::remove_all(scratch);
    return 0;
}
