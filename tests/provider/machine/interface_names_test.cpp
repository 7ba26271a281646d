#include "provider/machine/interface_names.h"

#include <gtest/gtest.h>

#include <set>

#include "provider/machine/plain_command.h"

namespace {

using kvl::provider::InterfaceNames;
using kvl::provider::InterfaceRole;
using kvl::provider::isPlainWord;

std::map<std::string, InterfaceRole> others(const std::set<std::string>& names) {
    std::map<std::string, InterfaceRole> roles;
    for (const std::string& name : names) {
        roles[name] = InterfaceRole::kOther;
    }
    return roles;
}

std::string bracketed(const std::string& name) {
    return "[" + name + "]";
}

TEST(InterfaceNames, LeavesPlainNamesAsTheyAre) {
    InterfaceNames names;
    names.add(others({"eth0", "eth0:1", "bond0.200", "lo", "eno1np0"}));
    EXPECT_TRUE(names.empty());
    EXPECT_EQ("eth0", names.forLibrary("eth0"));
    EXPECT_EQ("eth0:1 x", names.textForLibrary("eth0:1 x"));
    EXPECT_EQ("eth0", names.textForPeople("eth0", bracketed));
}

TEST(InterfaceNames, KeepsTheShapeOfANameThatAShellWouldTakeApart) {
    InterfaceNames names;
    names.add(others({"eth;id>g", "$(reboot).7", "-h", "eth0:;id", "a\x1b[1m"}));
    EXPECT_EQ("eth_id_g", names.forLibrary("eth;id>g"));
    EXPECT_EQ("__reboot_.7", names.forLibrary("$(reboot).7"));
    EXPECT_EQ("_h", names.forLibrary("-h"));
    EXPECT_EQ("eth0:_id", names.forLibrary("eth0:;id"));
    EXPECT_EQ("a__1m", names.forLibrary("a\x1b[1m"));
    EXPECT_EQ("eth;id>g", names.forMachine("eth_id_g"));
}

TEST(InterfaceNames, GivesNoTwoInterfacesOneName) {
    InterfaceNames names;
    const std::set<std::string> all = {"eth;0", "eth_0", "eth|0", "eth_0_1", "eth&0", "eth>0"};
    names.add(others(all));
    names.add(others({"eth_0_3"}));  // comes later, and is a stand-in already
    std::set<std::string> inLibrary;
    for (const std::string& name : all) {
        inLibrary.insert(names.forLibrary(name));
        EXPECT_TRUE(isPlainWord(names.forLibrary(name)));
        EXPECT_EQ(name, names.forMachine(names.forLibrary(name)));
    }
    inLibrary.insert(names.forLibrary("eth_0_3"));
    EXPECT_EQ(all.size() + 1, inLibrary.size());
    EXPECT_EQ("eth_0", names.forLibrary("eth_0"));
    EXPECT_EQ("eth_0_3", names.forMachine(names.forLibrary("eth_0_3")));
}

TEST(InterfaceNames, GivesPortsBondsAndVlansNamesThatTheLibraryReads) {
    InterfaceNames names;
    names.add({{"eno1", InterfaceRole::kPort},
               {"eno1:1", InterfaceRole::kOther},
               {"eno1.100", InterfaceRole::kVlan},
               {"ens192", InterfaceRole::kPort},
               {"eth0", InterfaceRole::kPort},
               {"eth2", InterfaceRole::kOther},
               {"peth0", InterfaceRole::kPort},
               {"eth.x", InterfaceRole::kPort},
               {"ethlo", InterfaceRole::kPort},
               {"slow0", InterfaceRole::kBond},
               {"bond0", InterfaceRole::kBond},
               {"ethbond", InterfaceRole::kBond},
               {"eth0.lo", InterfaceRole::kVlan},
               {"ethvlan", InterfaceRole::kVlan},
               {"eth0.5", InterfaceRole::kVlan},
               {"lo", InterfaceRole::kOther},
               {"virbr-local", InterfaceRole::kOther}});
    const std::map<std::string, std::string> expected = {{"eno1", "eth1"},
                                                         {"eno1:1", "eth1:1"},
                                                         {"eno1.100", "eno1.100"},
                                                         {"ens192", "eth3"},
                                                         {"eth0", "eth0"},
                                                         {"eth2", "eth2"},
                                                         {"peth0", "eth6"},
                                                         {"eth.x", "eth4"},
                                                         {"ethlo", "eth5"},
                                                         {"slow0", "bond2"},
                                                         {"bond0", "bond0"},
                                                         {"ethbond", "bond1"},
                                                         {"eth0.lo", "vlan0"},
                                                         {"ethvlan", "vlan1"},
                                                         {"eth0.5", "eth0.5"},
                                                         {"lo", "lo"},
                                                         {"virbr-local", "virbr-local"}};
    for (const auto& [name, inLibrary] : expected) {
        EXPECT_EQ(inLibrary, names.forLibrary(name));
        EXPECT_EQ(name, names.forMachine(inLibrary));
    }
}

TEST(InterfaceNames, NamesAnAliasAfterItsInterface) {
    InterfaceNames names;
    names.add(others({"eth;0", "eth;0:1", "eth;0:$x"}));
    EXPECT_EQ("eth_0:1", names.forLibrary("eth;0:1"));
    EXPECT_EQ("eth_0:_x", names.forLibrary("eth;0:$x"));
    EXPECT_EQ("eth_0:7 Link", names.textForLibrary("eth;0:7 Link")) << "an alias that comes later";
}

TEST(InterfaceNames, TranslatesWholeWordsForTheLibrary) {
    InterfaceNames names;
    names.add(others({"e;1", "e;10"}));
    EXPECT_EQ("e_1  Link\n  e_10\te;100 xe;1 e_1\r\n\n",
              names.textForLibrary("e;1  Link\n  e;10\te;100 xe;1 e;1\r\n\n"));
}

TEST(InterfaceNames, TranslatesWholeNamesForPeople) {
    InterfaceNames names;
    names.add(others({"e;1", "e;10", "e;1:$"}));
    EXPECT_EQ("[e;1]: ethtool -c [e;1] \"[e;10]\" e_100 xe_1 /a/[e;1] [e;1:$], ",
              names.textForPeople("e_1: ethtool -c e_1 \"e_10\" e_100 xe_1 /a/e_1 e_1:_, ", bracketed));
}

}  // namespace
