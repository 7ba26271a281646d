#include "provider/machine/plain_command.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using kvl::provider::describe;
using kvl::provider::isPlainWord;
using kvl::provider::PlainCommand;
using kvl::provider::readPlainCommand;
using Words = std::vector<std::string>;

struct Line {
    std::string text;
    PlainCommand command;
};

class PlainLine : public testing::TestWithParam<Line> {};

TEST_P(PlainLine, IsTakenApart) {
    const auto command = readPlainCommand(GetParam().text);
    ASSERT_TRUE(command);
    EXPECT_EQ(GetParam().command.words, command->words);
    EXPECT_EQ(GetParam().command.filter, command->filter);
    EXPECT_EQ(GetParam().command.outputFile, command->outputFile);
    EXPECT_EQ(GetParam().command.dropsErrors, command->dropsErrors);
}

INSTANTIATE_TEST_SUITE_P(OfTheLibrary, PlainLine,
                         testing::Values(Line{"/sbin/ifconfig -a > /tmp/ifconfig 2> /dev/null",
                                              {{"/sbin/ifconfig", "-a"}, {}, "/tmp/ifconfig", true}},
                                         Line{"/sbin/route > /tmp/route 2> /dev/null",
                                              {{"/sbin/route"}, {}, "/tmp/route", true}},
                                         Line{"/sbin/lspci -m | grep 02:00.0 > /tmp/lspci 2> /dev/null",
                                              {{"/sbin/lspci", "-m"}, {"grep", "02:00.0"}, "/tmp/lspci", true}},
                                         Line{"/usr/sbin/ethtool -i eth0:1 > /tmp/ethtool",
                                              {{"/usr/sbin/ethtool", "-i", "eth0:1"}, {}, "/tmp/ethtool", false}},
                                         Line{"/bin/cat /proc/net/bonding/b\xc3\xb6nd0",
                                              {{"/bin/cat", "/proc/net/bonding/b\xc3\xb6nd0"}, {}, "", false}},
                                         Line{"/bin/uname  -r ", {{"/bin/uname", "-r"}, {}, "", false}}));

class ShellLine : public testing::TestWithParam<std::string> {};

TEST_P(ShellLine, IsLeftToAShell) {
    EXPECT_FALSE(readPlainCommand(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(OfSomeForm, ShellLine,
                         testing::Values("", "true", "/bin/true;", "/bin/true ; id", "/bin/true | cat",
                                         "/bin/true | grep", "/bin/true | grep a b", "/bin/true | grep a | grep b",
                                         "/bin/true > ", "/bin/true > a b", "/bin/true >a", "/bin/true > $HOME",
                                         "/bin/true 2> /tmp/errors", "/bin/true 2> /dev/null > a", "/bin/true & ",
                                         "/bin/echo \"a b\"", "/bin/echo 'a'", "/bin/echo `id`", "/bin/echo $(id)",
                                         "/bin/echo a\\ b", "/bin/echo *", "/bin/echo a?", "/bin/echo [a]",
                                         "/bin/echo {a,b}", "/bin/echo ~", "/bin/echo #", "/bin/echo !",
                                         "/bin/echo a^b", "/bin/echo a=b", "/bin/echo a\tb", "/bin/echo a\nb",
                                         "/bin/echo \x1b[1m", "a=b /bin/true"));

TEST(PlainWord, IsOneThatAShellTakesAsItIs) {
    for (const char* word : {"eth0", "eth0.100", "bond-0", "eth0:1", "p2p3_1", "b\xc3\xb6nd", "a@b", "+x"}) {
        EXPECT_TRUE(isPlainWord(word)) << word;
    }
    for (const char* word :
         {"", "-h", "a;b", "a b", "a\tb", "$(id)", "`id`", "a>b", "a|b", "a&b", "a\x1b", "a\x7f", "a'b"}) {
        EXPECT_FALSE(isPlainWord(word)) << word;
    }
}

TEST(PlainCommandText, HasNoRedirections) {
    EXPECT_EQ("/sbin/ifconfig -a", describe(*readPlainCommand("/sbin/ifconfig -a > /tmp/x 2> /dev/null")));
    EXPECT_EQ("/sbin/lspci -m | grep 02:00.0", describe(*readPlainCommand("/sbin/lspci -m | grep 02:00.0 > /tmp/x")));
}

}  // namespace
