// What the library adds to the commands that it runs: a whole report of a recorded server, side by side with the same
// shell lines run bare, one after the other through `system`. Printed as a ratio, which holds on any machine.
//
// usage: report_cost [MACHINE LIMIT [ROUNDS]]

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "collector/CNetworkParameter.h"
#include "lan_report/CLanXmlWriter.h"
#include "machines/private_root.h"

namespace {

using SystemCall = int(const char*);

std::vector<std::string>* recordedLines = nullptr;

int bareSystem(const char* line) {
    static auto* const next = reinterpret_cast<SystemCall*>(dlsym(RTLD_NEXT, "system"));
    return next(line);
}

struct Comparison {
    std::string machine;
    double limit;
    int rounds;
};

const std::vector<Comparison> kComparisons = {{"one-port", 1.10, 31}, {"sixty-four-port", 1.15, 5}};

std::list<std::string> vendorsOf(CNetworkParameter& collector) {
    std::list<std::string> vendors;
    std::string name;
    for (int index = 1; collector.GetPhysicalDev(index, name); ++index) {
        std::string vendor;
        collector.GetVendorID(name, vendor);
        vendors.push_back(vendor);
    }
    vendors.sort();
    vendors.unique();
    return vendors;
}

void report() {
    CNetworkParameter collector("bench");
    collector.GetNetworkConfigurations();
    collector.GetEtherConfigurations();
    collector.GetBondingConfifurations();
    collector.GetRoutingConfigurations();
    CLanXmlWriter writer(vendorsOf(collector), &collector, "bench");
    writer.SetCommonInfo();
    writer.SetPhysicalInfo();
    writer.SetTeamInfo();
    writer.SetVirtualInfo();
    if (!writer.Write("/tmp/report.xml")) {
        std::fputs("the report could not be written\n", stderr);
        std::exit(1);
    }
}

template <typename Work>
double secondsOf(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// Runs inside the private root. @return true if the ratio keeps to its limit
bool compare(const Comparison& comparison) {
    std::vector<std::string> lines;
    recordedLines = &lines;
    report();
    recordedLines = nullptr;

    std::vector<double> reports;
    std::vector<double> bare;
    std::vector<double> ratios;
    for (int round = 0; round < comparison.rounds; ++round) {
        bare.push_back(secondsOf([&] {
            for (const std::string& line : lines) {
                bareSystem(line.c_str());
            }
        }));
        reports.push_back(secondsOf(report));
        ratios.push_back(reports.back() / bare.back());
    }
    const double ratio = median(ratios);
    std::printf("%-16s %4zu commands  report %8.1f ms  bare %8.1f ms  ratio %.3f (limit %.2f, %d rounds, medians)\n",
                comparison.machine.c_str(), lines.size(), median(reports) * 1000, median(bare) * 1000, ratio,
                comparison.limit, comparison.rounds);
    return ratio <= comparison.limit;
}

std::string recordingOf(const std::string& machine) {
    for (const std::string root : {KVL_BUILT_MACHINES, KVL_SOURCE_MACHINES}) {
        if (std::filesystem::is_directory(root + "/" + machine)) {
            return root + "/" + machine;
        }
    }
    throw kvl::machines::PrivateRootError("there is no recorded machine " + machine);
}

int compareInPrivateRoot(const Comparison& comparison) {
    kvl::machines::PrivateRootOptions options;
    const std::string build = KVL_BUILD_DIRECTORY;
    options.binds = {{build + "/bin"}, {build + "/lib"}};
    options.recording = recordingOf(comparison.machine);
    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    return kvl::machines::PrivateRoot(std::move(options))
        .run({self, comparison.machine, std::to_string(comparison.limit), std::to_string(comparison.rounds)});
}

}  // namespace

extern "C" int system(const char* line) {
    if (recordedLines != nullptr) {
        recordedLines->emplace_back(line);
    }
    return bareSystem(line);
}

int main(int argc, char** argv) {
    std::vector<Comparison> comparisons = kComparisons;
    if (argc >= 3) {
        comparisons = {{argv[1], std::atof(argv[2]), argc > 3 ? std::atoi(argv[3]) : 5}};
    }
    try {
        if (kvl::machines::insidePrivateRoot()) {
            return compare(comparisons.front()) ? 0 : 1;
        }
        int failures = 0;
        for (const Comparison& comparison : comparisons) {
            failures += compareInPrivateRoot(comparison);
        }
        return failures == 0 ? 0 : 1;
    } catch (const kvl::machines::PrivateRootError& error) {
        std::fprintf(stderr, "report_cost: %s\n", error.what());
        return 1;
    }
}
