#include "tests/machines/recording_check.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <sstream>

#include "tests/machines/adapter_check.h"
#include "tests/machines/outside.h"
#include "tests/machines/recording_text.h"

namespace kvl::test {
namespace {

constexpr std::array<const char*, 11> kCommands = {"bin/uname/",   "sbin/ifconfig/", "usr/sbin/ethtool/", "sbin/route/",
                                                   "bin/netstat/", "sbin/lspci/",    "sbin/modinfo/",     "bin/rpm/",
                                                   "bin/cat/",     "bin/ls/",        "sbin/depmod/"};

// Every server has been asked these.
constexpr std::array<const char*, 5> kQuestions = {"bin/uname/-r", "sbin/ifconfig/-a", "sbin/route/(none)",
                                                   "bin/netstat/-A inet6 -nr", "sbin/lspci/-m"};

constexpr std::array<const char*, 7> kFilePlaces = {
    "boot/", "etc/", "opt/tarvenn/kvl/", "proc/net/bonding/", "proc/net/vlan/", "sys/firmware/efi/", "var/lib/hbacmd/"};

template <std::size_t size>
bool beginsWithOneOf(const std::string& text, const std::array<const char*, size>& starts) {
    return std::any_of(starts.begin(), starts.end(), [&](const char* start) { return beginsWith(text, start); });
}

bool namesAnEnding(const std::string& text) {
    const std::string number = beginsWith(text, "signal ") ? text.substr(7) : text;
    std::istringstream stream(number);
    int value = 0;
    stream >> value;
    return value > 0 && value < 256 && number == std::to_string(value) + "\n";
}

class Check {
public:
    explicit Check(const std::string& recording) : tree_(readTree(recording)) {}

    std::vector<std::string> run() {
        checkReadme();
        for (const auto& [path, text] : tree_) {
            checkPlace(path);
            checkText(path, text);
        }
        for (const char* question : kQuestions) {
            needEntry(question);
        }
        findInterfaces();
        checkInterfaces();
        checkBonds();
        checkVlans();
        return faults_;
    }

private:
    void fault(const std::string& text) { faults_.push_back(text); }

    std::string textOf(const std::string& path) const {
        const auto found = tree_.find(path);
        return found == tree_.end() ? "" : found->second;
    }

    // `entry` is a command's path and arguments as in a recording, without "commands/".
    void needEntry(const std::string& entry) {
        const std::string any = entry.substr(0, entry.rfind('/') + 1) + "(any)";
        for (const std::string& name : {entry, entry + ".status", any, any + ".status"}) {
            if (tree_.count("commands/" + name) > 0) {
                return;
            }
        }
        fault("no entry " + entry);
    }

    void checkReadme() {
        const auto lines = linesOf(textOf("README.md"));
        if (lines.size() != 2 || !beginsWith(lines.front(), "# ")) {
            fault("README.md is not a title and one line");
        }
    }

    void checkPlace(const std::string& path) {
        const bool known = path == "README.md" ||
                           (beginsWith(path, "commands/") && beginsWithOneOf(path.substr(9), kCommands)) ||
                           (beginsWith(path, "files/") && beginsWithOneOf(path.substr(6), kFilePlaces));
        if (!known) {
            fault(path + " belongs to no command and is no file of a server");
        }
    }

    void checkText(const std::string& path, const std::string& text) {
        const bool isEnding = path.size() > 7 && path.substr(path.size() - 7) == ".status";
        if (isEnding && !namesAnEnding(text)) {
            fault(path + " is no ending");
        }
        if (!text.empty() && text.back() != '\n') {
            fault(path + " lacks its last line feed");
        }
        if (text.find('\r') != std::string::npos || text.find('\0') != std::string::npos) {
            fault(path + " holds a carriage return or a zero byte");
        }
        const bool columns = beginsWith(path, "commands/sbin/") || beginsWith(path, "commands/bin/netstat/");
        if (columns && text.find('\t') != std::string::npos) {
            fault(path + " holds a tab");
        }
    }

    void findInterfaces() {
        const std::string text = textOf("commands/sbin/ifconfig/-a");
        bool blockOpen = false;
        for (const std::string& line : linesOf(text)) {
            if (line.empty()) {
                blockOpen = false;
            } else if (line.front() != ' ') {
                if (blockOpen) {
                    fault("ifconfig: no empty line before " + line);
                }
                interfaces_.insert(line.substr(0, line.find(' ')));
                blockOpen = true;
            }
        }
        if (blockOpen) {
            fault("ifconfig: the last block is not closed by an empty line");
        }
    }

    void checkInterfaces() {
        for (const std::string& name : interfaces_) {
            if (name == "lo") {
                continue;
            }
            needEntry("usr/sbin/ethtool/-i " + name);
            if (beginsWith(name, "eth")) {
                for (const char* option : {"-k ", "-a ", "-g ", "-c "}) {
                    needEntry("usr/sbin/ethtool/" + (option + name));
                }
            }
            checkCard(name);
        }
    }

    void checkCard(const std::string& interface) {
        constexpr std::size_t kWholeBusInfo = 12;
        const std::string busInfo = valueBehind("bus-info: ", textOf("commands/usr/sbin/ethtool/-i " + interface));
        if (busInfo.size() != kWholeBusInfo) {
            return;
        }
        const std::string location = busInfo.substr(5);
        needEntry("sbin/lspci/-mns " + location);
        if (("\n" + textOf("commands/sbin/lspci/-m")).find("\n" + location + " \"") == std::string::npos) {
            fault("lspci -m does not list " + location + " of " + interface);
        }
    }

    void checkBonds() {
        const std::string place = "files/proc/net/bonding/";
        for (auto file = tree_.lower_bound(place); file != tree_.end() && beginsWith(file->first, place); ++file) {
            needInterface(file->first.substr(place.size()), "a bond");
            for (const std::string& line : linesOf(file->second)) {
                if (beginsWith(line, "Slave Interface: ")) {
                    needInterface(line.substr(17), "a slave of " + file->first.substr(place.size()));
                }
            }
        }
    }

    void checkVlans() {
        const auto lines = linesOf(textOf("files/proc/net/vlan/config"));
        for (std::size_t number = 2; number < lines.size(); ++number) {
            checkVlan(lines[number]);
        }
    }

    // A long name touches the bar after it.
    void checkVlan(const std::string& line) {
        const std::size_t bar = line.find('|');
        std::istringstream words(line.substr(0, bar) + (bar == std::string::npos ? "" : " " + line.substr(bar)));
        std::string name;
        std::string bars[2];
        std::string base;
        int id = -1;
        words >> name >> bars[0] >> id >> bars[1] >> base;
        if (!words || bars[0] != "|" || bars[1] != "|") {
            fault("VLAN table: " + line);
            return;
        }
        needInterface(name, "a VLAN");
        needInterface(base, "under a VLAN");
    }

    void needInterface(const std::string& name, const std::string& what) {
        if (interfaces_.count(name) == 0) {
            fault("ifconfig does not know " + name + ", " + what);
        }
    }

    std::map<std::string, std::string> tree_;
    std::set<std::string> interfaces_;
    std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> faultsOf(const std::string& recording) {
    std::vector<std::string> faults = Check(recording).run();
    for (const std::string& fault : adapterFaultsOf(recording)) {
        faults.push_back(fault);
    }
    return faults;
}

}  // namespace kvl::test
