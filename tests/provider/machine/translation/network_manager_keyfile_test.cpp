#include "provider/machine/translation/network_manager_keyfile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kvl::provider {
namespace {

using Texts = std::vector<std::string>;

TEST(Keyfile, IsReadAsAWhole) {
    const auto connection = readKeyfile(
        "[connection]\n"
        "id=uplink\\sone\n"
        "uuid=9d3f1b1e-0000-4000-8000-000000000001\n"
        "type=vlan\n"
        "interface-name=bond0.200\n"
        "autoconnect=0\n"
        "\n"
        "[vlan]\n"
        "id=200\n"
        "parent=bond0\n"
        "\n"
        "[ipv4]\n"
        "dns=10.20.0.2;10.20.0.3;\n"
        "dns-search=example.com;lab.example.com;\n"
        "method=manual\n"
        "\n"
        "[ipv6]\n"
        "dns=2001:db8:20::2;\n"
        "gateway=2001:db8:20::1\n"
        "method=ignore\n");
    ASSERT_TRUE(connection);
    EXPECT_EQ(connection->id, "uplink one");
    EXPECT_EQ(connection->uuid, "9d3f1b1e-0000-4000-8000-000000000001");
    EXPECT_EQ(connection->type, "vlan");
    EXPECT_EQ(connection->interfaceName, "bond0.200");
    EXPECT_FALSE(connection->autoconnect);
    EXPECT_EQ(connection->controller, "");
    EXPECT_EQ(connection->vlanId, "200");
    EXPECT_EQ(connection->vlanParent, "bond0");
    EXPECT_EQ(connection->ipv4Method, "manual");
    EXPECT_EQ(connection->ipv6Method, "ignore");
    EXPECT_EQ(connection->ipv6Gateway, "2001:db8:20::1");
    EXPECT_EQ(connection->dns, (Texts{"10.20.0.2", "10.20.0.3", "2001:db8:20::2"}));
    EXPECT_EQ(connection->dnsSearch, (Texts{"example.com", "lab.example.com"}));
}

TEST(Keyfile, TakesTheLaterOfTwoValuesAndNamesInTheirCaseOfLetters) {
    const auto connection = readKeyfile(
        "[connection]\ninterface-name=eno1\nINTERFACE-NAME=eno3\n[ipv4]\nmethod=auto\n"
        "[connection]\ninterface-name=eno2\n; a comment=1\nautoconnect=perhaps\n");
    ASSERT_TRUE(connection);
    EXPECT_EQ(connection->interfaceName, "eno2");
    EXPECT_TRUE(connection->autoconnect);
    EXPECT_EQ(connection->ipv4Method, "auto");
}

TEST(Keyfile, KnowsOlderFormsOfAddressesAndTypes) {
    const auto connection = readKeyfile(
        "[connection]\ntype=802-3-ethernet\n[802-3-ethernet]\nmac-address=0;27;33;142;64;16;\n"
        "assigned-mac-address=stable\n");
    ASSERT_TRUE(connection);
    EXPECT_EQ(connection->type, "ethernet");
    EXPECT_EQ(connection->macAddress, "00:1B:21:8E:40:10");
    EXPECT_EQ(connection->clonedMacAddress, "stable");
}

TEST(Keyfile, GivesAPortOfABondNoAddressesButOneOfAVrfItsOwn) {
    const std::string head = "[connection]\ninterface-name=eno1\ncontroller=up\n";
    EXPECT_EQ(readKeyfile(head + "port-type=bond\n")->ipv4Method, "disabled");
    EXPECT_EQ(readKeyfile(head + "port-type=vrf\n")->ipv4Method, "auto");
}

TEST(Keyfile, IsNoneWithoutAConnection) {
    EXPECT_FALSE(readKeyfile("ONBOOT=yes\n"));
    EXPECT_FALSE(readKeyfile(""));
}

}  // namespace
}  // namespace kvl::provider
