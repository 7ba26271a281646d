#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "provider/machine/translation/translations.h"

// The recorded machines, of which the older ones print what the library reads.

namespace kvl::test {
namespace {

using provider::translated;

/// What an output has in another form than the library's. A search in the text finds it, not a parse.
struct OtherForm {
    const char* command;
    const char* sign;
};

const std::vector<OtherForm>& otherForms() {
    static const std::vector<OtherForm> forms = {
        {"/sbin/ifconfig -a", R"(: flags=\d)"},
        {"/usr/sbin/ethtool -a", R"((^|\n)(Autonegotiate|RX|TX):\t)"},
        {"/usr/sbin/ethtool -g", R"(\n(RX|TX)[A-Za-z ]{0,6}:\s*n/a)"},
        {"/usr/sbin/ethtool -c", R"(\n[a-z-]+: n/a|Adaptive RX: n/a  TX: n/a|-frames-(low|high))"},
        {"/usr/sbin/ethtool -k", R"(\n[a-z]+ [a-z ]+offload:)"},
        {"/sbin/route", R"(\ndefault +[^0-9 ]|\n0\.0\.0\.0 +[1-9][0-9.]+ +0\.0\.0\.0 )"},
        {"/bin/netstat -A inet6 -nr", R"(\n(?!::/0 )\S+/\d+ +(?!:: )[0-9a-f:]+ )"},
        {"/etc/resolv.conf", R"(\n(domain|search)[^]*\n(domain|search))"},
        {"/proc/net/bonding/", R"([^\n]{256})"},
        {"/proc/net/vlan/config", R"([^ \t]\| )"},
    };
    return forms;
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

struct Recorded {
    std::string machine;
    std::string command;  ///< command line or path
    std::string output;
};

std::vector<Recorded> recordedOutputs() {
    namespace fs = std::filesystem;
    std::vector<Recorded> outputs;
    for (const auto& machine : fs::directory_iterator(KVL_MACHINES_FOLDER)) {
        const std::string name = machine.path().filename().string();
        for (const char* const folder : {"commands", "files"}) {
            const fs::path root = machine.path() / folder;
            if (!fs::is_directory(root)) {
                continue;
            }
            for (const auto& entry : fs::recursive_directory_iterator(root)) {
                if (!entry.is_regular_file() || entry.path().extension() == ".status") {
                    continue;
                }
                const std::string file = "/" + fs::relative(entry.path(), root).string();
                const bool isCommand = std::string(folder) == "commands";
                const std::string arguments = entry.path().filename().string();
                const std::string program = file.substr(0, file.rfind('/'));
                outputs.push_back({name,
                                   !isCommand              ? file
                                   : arguments == "(none)" ? program
                                                           : program + " " + arguments,
                                   contentOf(entry.path())});
            }
        }
    }
    return outputs;
}

bool isIfcfg(const std::string& command) {
    return command.find("/ifcfg-") != std::string::npos;
}

bool lacksKey(const std::string& ifcfg) {
    return ifcfg.find("ONBOOT=") == std::string::npos || ifcfg.find("BOOTPROTO=") == std::string::npos;
}

TEST(RecordedMachine, InTheLibrarysFormComesOutUnchangedByteForByte) {
    int unchanged = 0;
    int changed = 0;
    for (const Recorded& recorded : recordedOutputs()) {
        bool isOther = isIfcfg(recorded.command) && lacksKey(recorded.output);
        for (const OtherForm& form : otherForms()) {
            const bool fits = recorded.command.compare(0, std::string(form.command).size(), form.command) == 0;
            isOther = isOther || (fits && std::regex_search(recorded.output, std::regex(form.sign)));
        }
        const std::string output = translated(recorded.command, recorded.output);
        const std::string where = recorded.machine + ": " + recorded.command + "\n" + recorded.output;
        EXPECT_EQ(output != recorded.output, isOther) << where << "---\n" << output;
        EXPECT_EQ(translated(recorded.command, output), output) << where;
        ++(isOther ? changed : unchanged);
    }
    EXPECT_GT(unchanged, 100);
    EXPECT_GT(changed, 10);
}

}  // namespace
}  // namespace kvl::test
