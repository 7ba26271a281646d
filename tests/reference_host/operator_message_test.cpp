#include "reference_host/operator_messages.h"

#include <gtest/gtest.h>

namespace {

using kvl::host::filledText;
using kvl::host::findOperatorMessage;

struct Expected {
    const char* id;
    std::size_t argumentCount;
};

constexpr Expected kExpected[] = {
    {"MSGID_EMULEX_0004_F", 2},
    {"MSGID_EMULEX_FC_0004_F", 2},
    {"MSGID_EMULEX_0020_F", 1},
    {"MSGID_EMULEX_FC_0019_F", 1},
};

TEST(OperatorMessage, HasATextForEveryIdentifierInUse) {
    for (const Expected& row : kExpected) {
        const kvl::host::OperatorMessage* message = findOperatorMessage(row.id);
        ASSERT_NE(message, nullptr) << row.id;
        EXPECT_EQ(message->argumentCount, row.argumentCount) << row.id;
        EXPECT_FALSE(message->text.empty()) << row.id;
    }
}

TEST(OperatorMessage, IsFoundByItsWholeIdentifier) {
    for (const char* id : {"", "MSGID", "MSGID_EMULEX_0004_", "MSGID_EMULEX_0004_FX", "msgid_emulex_0004_f"}) {
        EXPECT_EQ(findOperatorMessage(id), nullptr) << id;
    }
}

TEST(FilledText, PutsTheArgumentsInOrder) {
    EXPECT_EQ(filledText("%s: %s", {"a", "b"}), "a: b");
    EXPECT_EQ(filledText("%s%s", {"%s", "b"}), "%sb");
    EXPECT_EQ(filledText("none", {"a"}), "none");
    EXPECT_EQ(filledText("", {}), "");
}

TEST(FilledText, LeavesThePlacesOfMissingArgumentsEmpty) {
    EXPECT_EQ(filledText("<%s><%s>", {"a"}), "<a><>");
}

}  // namespace
