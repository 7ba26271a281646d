#include "provider/machine/translation/translations.h"

#include <gtest/gtest.h>

#include <string>

namespace kvl::test {
namespace {

using provider::findTranslation;

TEST(TranslationTable, FindsWholeWordsOfCommandsAndBeginningsOfPaths) {
    const auto whatOf = [](const char* command) { return std::string(findTranslation(command).what); };
    const std::string other = provider::translations().back().what;
    EXPECT_EQ(whatOf("/sbin/route -n"), whatOf("/sbin/route"));
    EXPECT_NE(whatOf("/sbin/route"), other);
    EXPECT_EQ(whatOf("/sbin/routel"), other);
    EXPECT_EQ(whatOf("/usr/sbin/ethtool -i eth0"), other);
    EXPECT_EQ(whatOf("/usr/sbin/ethtool -all eth0"), other);
    EXPECT_EQ(whatOf("/sbin/lspci -m | grep 02:00.0"), other);
    EXPECT_EQ(whatOf("/bin/cat /etc/resolv.conf"), whatOf("/etc/resolv.conf"));
    EXPECT_EQ(whatOf("/etc/resolv.conf.save"), other);
    EXPECT_EQ(whatOf("/bin/cat /proc/net/bonding/bond0"), whatOf("/proc/net/bonding/bond1"));
    EXPECT_EQ(whatOf("/proc/net/bonding"), other);
    EXPECT_EQ(whatOf("/etc/sysconfig/network-scripts/ifcfg-eth0:1"), "as the shell reads it");
    EXPECT_EQ(whatOf("/etc/sysconfig/network-scripts/ifup"), other);
}

TEST(TranslationTable, GivesEachRowAFunctionAndSaysWhatItChanges) {
    for (const provider::Translation& row : provider::translations()) {
        EXPECT_NE(row.translate, nullptr) << row.command;
        EXPECT_NE(std::string(row.what), "") << row.command;
    }
}

}  // namespace
}  // namespace kvl::test
