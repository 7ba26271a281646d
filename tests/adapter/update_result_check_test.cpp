#include <sys/stat.h>

#include <filesystem>

#include "tests/adapter/update_execution.h"

namespace kvl::test {
namespace {

namespace fs = std::filesystem;

// ---- The message file ----

using UpdateMessages = UpdateExecution;

TEST_F(UpdateMessages, ThatCannotBeOpenedFailTheCheck) {
    machine.file(output, textOf(kGoodOutput));
    fs::remove(messageFile);
    EXPECT_FALSE(check());
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        2 File open error /tmp/message.txt
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));

    machine.file(messageFile, kMessages);
    chmod(messageFile.c_str(), 0);
    EXPECT_FALSE(check());
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        2 File open error /tmp/message.txt
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));

    messageFile = "";
    EXPECT_FALSE(check());
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        2 File open error{BLANK}
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdateMessages, WithoutASuccessTextFailTheCheckAtOnceWithoutACode) {
    EXPECT_FALSE(check("EndMessage=Ended\n", "Ended\n"));
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        2 no successMessage
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdateMessages, WithoutAnyTextFailTheCheckLikewise) {
    EXPECT_FALSE(check("", "Done\n"));
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        2 no successMessage
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateMessages, ThatAreADirectoryHoldNoText) {
    fs::remove(messageFile);
    machine.directory(messageFile);
    machine.file(output, textOf(kGoodOutput));
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        2 no successMessage
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateMessages, WithoutAnEndTextNeedNoSleep) {
    EXPECT_TRUE(check("SuccessMessage=Done\n", "Done\n"));
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 no endMessage
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdateMessages, AreReadByLinesOfWhichOthersAreIgnoredAndEmptyOnesSkipped) {
    EXPECT_TRUE(
        check("# texts\n\nsuccessmessage=no\nSuccessMessage=Done\nSuccess=no\n\n\nENDMESSAGE=no\nSuccessMessage\n",
              "Done\n"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[# texts]
        1 log_mes_ifs. buf=[]
        1 log_mes_ifs. buf=[successmessage=no]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[Success=no]
        1 log_mes_ifs. buf=[]
        1 log_mes_ifs. buf=[]
        1 log_mes_ifs. buf=[ENDMESSAGE=no]
        1 log_mes_ifs. buf=[SuccessMessage]
        1 no endMessage
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateMessages, AreReadToALastLineWithoutAnEnd) {
    EXPECT_TRUE(check("SuccessMessage=Done", "Done"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 no endMessage
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateMessages, OfOneKindAreNumberedInTheOrderOfTheFile) {
    EXPECT_TRUE(check("EndMessage=one\nSuccessMessage=A\nEndMessage=two\nSuccessMessage=B\n", "B\ntwo\n"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[EndMessage=one]
        1 endMessage[0]=[one]
        1 log_mes_ifs. buf=[SuccessMessage=A]
        1 successMessage[0]=[A]
        1 log_mes_ifs. buf=[EndMessage=two]
        1 endMessage[1]=[two]
        1 log_mes_ifs. buf=[SuccessMessage=B]
        1 successMessage[1]=[B]
        1 Result file check endmsg [B]
        1 Result file check endmsg [two]
        1 Find endmsg[] in [two]
        1 Result file check success msg [B]
        1 Find SuccessMsg[] in [B]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateMessages, AreCutFromAFixedColumnWhereverTheKeyStands) {
    EXPECT_TRUE(check("  SuccessMessage=Done\nxEndMessage=Ended\nxSuccessMessage=\n", "e=Done\n=Ended\n"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[  SuccessMessage=Done]
        1 successMessage[0]=[e=Done]
        1 log_mes_ifs. buf=[xEndMessage=Ended]
        1 endMessage[0]=[=Ended]
        1 log_mes_ifs. buf=[xSuccessMessage=]
        1 successMessage[1]=[=]
        1 Result file check endmsg [e=Done]
        1 Result file check endmsg [=Ended]
        1 Find endmsg[] in [=Ended]
        1 Result file check success msg [e=Done]
        1 Find SuccessMsg[] in [e=Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateMessages, OfBothKindsComeFromALineWithBothKeys) {
    EXPECT_TRUE(check("SuccessMessage=EndMessage=x\nEndMessage=SuccessMessage=y\n", "age=EndMessage=x\n"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=EndMessage=x]
        1 successMessage[0]=[EndMessage=x]
        1 endMessage[0]=[age=EndMessage=x]
        1 log_mes_ifs. buf=[EndMessage=SuccessMessage=y]
        1 successMessage[1]=[essMessage=y]
        1 endMessage[1]=[SuccessMessage=y]
        1 Result file check endmsg [age=EndMessage=x]
        1 Find endmsg[] in [age=EndMessage=x]
        1 Result file check success msg [age=EndMessage=x]
        1 Find SuccessMsg[] in [age=EndMessage=x]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateMessages, LoseBlanksAndLineEndsAroundThemButNothingElse) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"  Done  ", "Done"},  {"\r Done \r \r", "Done"}, {"All  is\rdone ", "All  is\rdone"}, {"\tDone\t", "\tDone\t"},
        {" \tDone", "\tDone"}, {"\vDone\f", "\vDone\f"},  {"\"Done\" ", "\"Done\""},           {"=Done", "=Done"},
    };
    for (const auto& [value, text] : rows) {
        EXPECT_TRUE(check("SuccessMessage=" + value + "\n", text + "\n")) << value;
        EXPECT_EQ(TestHost::trace(), traceOf({{"value", value}, {"text", text}}, R"(
            4 CEmulexCommon::CheckUpdateResult_() [START]
            1 log_mes_ifs. buf=[SuccessMessage={value}]
            1 successMessage[0]=[{text}]
            1 no endMessage
            1 Result file check success msg [{text}]
            1 Find SuccessMsg[] in [{text}]
            1 Update Result Check OK
            4 CEmulexCommon::CheckUpdateResult_() [END]
        )"));
    }
}

TEST_F(UpdateMessages, MayHaveCarriageReturnsAtTheLineEnds) {
    EXPECT_TRUE(check("SuccessMessage=Done\r\n\r\nEndMessage=Ended\r\n", "Done\r\nEnded\r\n"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done{CR}]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[{CR}]
        1 log_mes_ifs. buf=[EndMessage=Ended{CR}]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Done{CR}]
        1 Result file check endmsg [Ended{CR}]
        1 Find endmsg[] in [Ended{CR}]
        1 Result file check success msg [Done{CR}]
        1 Find SuccessMsg[] in [Done{CR}]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateMessages, ThatAreEmptyAreFoundInTheFirstLine) {
    for (const char* value : {"", " ", " \r \r"}) {
        EXPECT_TRUE(check("SuccessMessage=" + std::string(value) + "\nEndMessage=" + value + "\n", "\nfailed\n"));
        EXPECT_EQ(TestHost::trace(), traceOf({{"value", value}}, R"(
            4 CEmulexCommon::CheckUpdateResult_() [START]
            1 log_mes_ifs. buf=[SuccessMessage={value}]
            1 successMessage[0]=[]
            1 log_mes_ifs. buf=[EndMessage={value}]
            1 endMessage[0]=[]
            1 Result file check endmsg []
            1 Find endmsg[] in []
            1 Result file check success msg []
            1 Find SuccessMsg[] in []
            1 Update Result Check OK
            4 CEmulexCommon::CheckUpdateResult_() [END]
        )"));
        EXPECT_EQ(TestHost::sleeps(), looks(1));
    }
}

TEST_F(UpdateMessages, ThatAreEmptyAreNotFoundInAnEmptyOutput) {
    EXPECT_FALSE(check("SuccessMessage=\n", ""));
    EXPECT_EQ(lastError(), 37U);
    EXPECT_FALSE(check("SuccessMessage=\nEndMessage=\n", ""));
    EXPECT_EQ(lastError(), 36U);
    EXPECT_EQ(TestHost::sleeps(), looks(5));
}

const std::string kFiveOfEach =
    "SuccessMessage=S1\nSuccessMessage=S2\nSuccessMessage=S3\nSuccessMessage=S4\nSuccessMessage=S5\n"
    "EndMessage=E1\nEndMessage=E2\nEndMessage=E3\nEndMessage=E4\nEndMessage=E5\n";

TEST_F(UpdateMessages, CountUpToFiveOfAKind) {
    EXPECT_TRUE(check(kFiveOfEach, "S5\nE5\n"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=S1]
        1 successMessage[0]=[S1]
        1 log_mes_ifs. buf=[SuccessMessage=S2]
        1 successMessage[1]=[S2]
        1 log_mes_ifs. buf=[SuccessMessage=S3]
        1 successMessage[2]=[S3]
        1 log_mes_ifs. buf=[SuccessMessage=S4]
        1 successMessage[3]=[S4]
        1 log_mes_ifs. buf=[SuccessMessage=S5]
        1 successMessage[4]=[S5]
        1 log_mes_ifs. buf=[EndMessage=E1]
        1 endMessage[0]=[E1]
        1 log_mes_ifs. buf=[EndMessage=E2]
        1 endMessage[1]=[E2]
        1 log_mes_ifs. buf=[EndMessage=E3]
        1 endMessage[2]=[E3]
        1 log_mes_ifs. buf=[EndMessage=E4]
        1 endMessage[3]=[E4]
        1 log_mes_ifs. buf=[EndMessage=E5]
        1 endMessage[4]=[E5]
        1 Result file check endmsg [S5]
        1 Result file check endmsg [E5]
        1 Find endmsg[] in [E5]
        1 Result file check success msg [S5]
        1 Find SuccessMsg[] in [S5]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateMessages, BehindTheFifthOfAKindAreReadButNotStored) {
    const std::string text = kFiveOfEach + "SuccessMessage=S6\nEndMessage=E6\nEndMessage=E7\n";
    EXPECT_TRUE(check(text, "S1\nE5\n"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=S1]
        1 successMessage[0]=[S1]
        1 log_mes_ifs. buf=[SuccessMessage=S2]
        1 successMessage[1]=[S2]
        1 log_mes_ifs. buf=[SuccessMessage=S3]
        1 successMessage[2]=[S3]
        1 log_mes_ifs. buf=[SuccessMessage=S4]
        1 successMessage[3]=[S4]
        1 log_mes_ifs. buf=[SuccessMessage=S5]
        1 successMessage[4]=[S5]
        1 log_mes_ifs. buf=[EndMessage=E1]
        1 endMessage[0]=[E1]
        1 log_mes_ifs. buf=[EndMessage=E2]
        1 endMessage[1]=[E2]
        1 log_mes_ifs. buf=[EndMessage=E3]
        1 endMessage[2]=[E3]
        1 log_mes_ifs. buf=[EndMessage=E4]
        1 endMessage[3]=[E4]
        1 log_mes_ifs. buf=[EndMessage=E5]
        1 endMessage[4]=[E5]
        1 log_mes_ifs. buf=[SuccessMessage=S6]
        1 log_mes_ifs. buf=[EndMessage=E6]
        1 log_mes_ifs. buf=[EndMessage=E7]
        1 Result file check endmsg [S1]
        1 Result file check endmsg [E5]
        1 Find endmsg[] in [E5]
        1 Result file check success msg [S1]
        1 Find SuccessMsg[] in [S1]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_FALSE(check(text, "S6\nE1\n"));
    EXPECT_EQ(lastError(), 37U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=S1]
        1 successMessage[0]=[S1]
        1 log_mes_ifs. buf=[SuccessMessage=S2]
        1 successMessage[1]=[S2]
        1 log_mes_ifs. buf=[SuccessMessage=S3]
        1 successMessage[2]=[S3]
        1 log_mes_ifs. buf=[SuccessMessage=S4]
        1 successMessage[3]=[S4]
        1 log_mes_ifs. buf=[SuccessMessage=S5]
        1 successMessage[4]=[S5]
        1 log_mes_ifs. buf=[EndMessage=E1]
        1 endMessage[0]=[E1]
        1 log_mes_ifs. buf=[EndMessage=E2]
        1 endMessage[1]=[E2]
        1 log_mes_ifs. buf=[EndMessage=E3]
        1 endMessage[2]=[E3]
        1 log_mes_ifs. buf=[EndMessage=E4]
        1 endMessage[3]=[E4]
        1 log_mes_ifs. buf=[EndMessage=E5]
        1 endMessage[4]=[E5]
        1 log_mes_ifs. buf=[SuccessMessage=S6]
        1 log_mes_ifs. buf=[EndMessage=E6]
        1 log_mes_ifs. buf=[EndMessage=E7]
        1 Result file check endmsg [S6]
        1 Result file check endmsg [E1]
        1 Find endmsg[] in [E1]
        1 Result file check success msg [S6]
        1 Result file check success msg [E1]
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_FALSE(check(text, "S1\nE6\nE7\n"));
    EXPECT_EQ(lastError(), 36U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=S1]
        1 successMessage[0]=[S1]
        1 log_mes_ifs. buf=[SuccessMessage=S2]
        1 successMessage[1]=[S2]
        1 log_mes_ifs. buf=[SuccessMessage=S3]
        1 successMessage[2]=[S3]
        1 log_mes_ifs. buf=[SuccessMessage=S4]
        1 successMessage[3]=[S4]
        1 log_mes_ifs. buf=[SuccessMessage=S5]
        1 successMessage[4]=[S5]
        1 log_mes_ifs. buf=[EndMessage=E1]
        1 endMessage[0]=[E1]
        1 log_mes_ifs. buf=[EndMessage=E2]
        1 endMessage[1]=[E2]
        1 log_mes_ifs. buf=[EndMessage=E3]
        1 endMessage[2]=[E3]
        1 log_mes_ifs. buf=[EndMessage=E4]
        1 endMessage[3]=[E4]
        1 log_mes_ifs. buf=[EndMessage=E5]
        1 endMessage[4]=[E5]
        1 log_mes_ifs. buf=[SuccessMessage=S6]
        1 log_mes_ifs. buf=[EndMessage=E6]
        1 log_mes_ifs. buf=[EndMessage=E7]
        1 Result file check endmsg [S1]
        1 Result file check endmsg [E6]
        1 Result file check endmsg [E7]
        1 Result file check endmsg [S1]
        1 Result file check endmsg [E6]
        1 Result file check endmsg [E7]
        1 Result file check endmsg [S1]
        1 Result file check endmsg [E6]
        1 Result file check endmsg [E7]
        1 Result file check endmsg [S1]
        1 Result file check endmsg [E6]
        1 Result file check endmsg [E7]
        1 Result file check endmsg [S1]
        1 Result file check endmsg [E6]
        1 Result file check endmsg [E7]
        2 No such end message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateMessages, OfOneKindBehindTheFifthLeaveTheOtherKindAlone) {
    EXPECT_TRUE(
        check("SuccessMessage=S1\nSuccessMessage=S2\nSuccessMessage=S3\nSuccessMessage=S4\nSuccessMessage=S5\n"
              "SuccessMessage=S6\nEndMessage=Ended\n",
              "S2\nEnded\n"));
}

TEST_F(UpdateMessages, AreOfAnyLength) {
    const std::string text(100000, 'x');
    EXPECT_TRUE(check("SuccessMessage=" + text + "y\n", text + "y\n"));
    EXPECT_FALSE(check("SuccessMessage=" + text + "y\n", text + "z\n"));
}

TEST_F(UpdateMessages, AreComparedByteForByte) {
    const std::string noUtf8 = "\xff\xfe\x80";
    EXPECT_TRUE(check("SuccessMessage=" + noUtf8 + "\n", "a" + noUtf8 + "b\n"));
    const std::string withZero("a\0b", 3);
    EXPECT_TRUE(check("SuccessMessage=" + withZero + "\n", "x" + withZero + "\n"));
    EXPECT_FALSE(check("SuccessMessage=" + withZero + "\n", std::string("xa\0c\n", 5)));
    EXPECT_FALSE(check("SuccessMessage=Done\n", "done DONE\n"));
    EXPECT_FALSE(check("SuccessMessage=D.*e\n", "Done\n"));
}

// ---- The end text ----

using UpdateEnd = UpdateExecution;

TEST_F(UpdateEnd, IsLookedForOnceThirtySecondsHavePassed) {
    machine.file(output, textOf(kGoodOutput));
    Lines tracedBefore;
    TestHost::onSleep([&] { tracedBefore = TestHost::trace(); });
    EXPECT_TRUE(check());
    EXPECT_EQ(lastError(), kEarlierError);
    EXPECT_EQ(tracedBefore, traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
    )"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        1 Result file check success msg [Working]
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), looks(1));
}

TEST_F(UpdateEnd, MayComeAtEachOfTheFiveLooks) {
    const std::string earlierLooks[] = {
        "",
        R"(
            1 Result file check endmsg [Working]
        )",
        R"(
            1 Result file check endmsg [Working]
            1 Result file check endmsg [Working]
        )",
        R"(
            1 Result file check endmsg [Working]
            1 Result file check endmsg [Working]
            1 Result file check endmsg [Working]
        )",
        R"(
            1 Result file check endmsg [Working]
            1 Result file check endmsg [Working]
            1 Result file check endmsg [Working]
            1 Result file check endmsg [Working]
        )",
    };
    for (std::size_t look = 1; look <= 5; ++look) {
        SCOPED_TRACE(look);
        forget();
        machine.file(output, "Working\n");
        atSleep(look, [this] { machine.file(output, textOf(kGoodOutput)); });
        EXPECT_TRUE(check());
        EXPECT_EQ(lastError(), kEarlierError);
        EXPECT_EQ(TestHost::trace(), traceOf({{"earlier looks", earlierLooks[look - 1]}}, R"(
            4 CEmulexCommon::CheckUpdateResult_() [START]
            1 log_mes_ifs. buf=[SuccessMessage=Done]
            1 successMessage[0]=[Done]
            1 log_mes_ifs. buf=[EndMessage=Ended]
            1 endMessage[0]=[Ended]
            {earlier looks}
            1 Result file check endmsg [Working]
            1 Result file check endmsg [Done]
            1 Result file check endmsg [Ended]
            1 Find endmsg[] in [Ended]
            1 Result file check success msg [Working]
            1 Result file check success msg [Done]
            1 Find SuccessMsg[] in [Done]
            1 Update Result Check OK
            4 CEmulexCommon::CheckUpdateResult_() [END]
        )"));
        EXPECT_EQ(TestHost::sleeps(), looks(look));
    }
}

TEST_F(UpdateEnd, IsGivenUpAtTheFifthLook) {
    machine.file(output, "Working\nDone\n");
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 36U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Done]
        2 No such end message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), looks(5));
}

TEST_F(UpdateEnd, IsGivenUpLikewiseInAnEmptyOutput) {
    machine.file(output, "");
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 36U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        2 No such end message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), looks(5));
}

TEST_F(UpdateEnd, IsNotWaitedForInAMissingFile) {
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        2 File Open Error
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), looks(1));
}

TEST_F(UpdateEnd, IsNotWaitedForInAFileThatGoesAway) {
    machine.file(output, "Working\n");
    atSleep(3, [this] { fs::remove(output); });
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Working]
        2 File Open Error
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), looks(3));
}

TEST_F(UpdateEnd, IsWaitedForInADirectory) {
    machine.directory(output);
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 36U);
    EXPECT_EQ(TestHost::sleeps(), looks(5));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        2 No such end message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateEnd, IsAnyOfTheEndTexts) {
    for (const std::string text : {"first", "second", "third"}) {
        EXPECT_TRUE(check("SuccessMessage=Done\nEndMessage=first\nEndMessage=second\nEndMessage=third\n",
                          "Done\nthe " + text + "!\n"));
        EXPECT_EQ(TestHost::trace(), traceOf({{"text", text}}, R"(
            4 CEmulexCommon::CheckUpdateResult_() [START]
            1 log_mes_ifs. buf=[SuccessMessage=Done]
            1 successMessage[0]=[Done]
            1 log_mes_ifs. buf=[EndMessage=first]
            1 endMessage[0]=[first]
            1 log_mes_ifs. buf=[EndMessage=second]
            1 endMessage[1]=[second]
            1 log_mes_ifs. buf=[EndMessage=third]
            1 endMessage[2]=[third]
            1 Result file check endmsg [Done]
            1 Result file check endmsg [the {text}!]
            1 Find endmsg[] in [the {text}!]
            1 Result file check success msg [Done]
            1 Find SuccessMsg[] in [Done]
            1 Update Result Check OK
            4 CEmulexCommon::CheckUpdateResult_() [END]
        )"));
    }
}

TEST_F(UpdateEnd, StandsInOneLineWithItsCaseAndEndsTheReading) {
    EXPECT_TRUE(check(kMessages, "ended\nEn\nded\nnowEndednow\nDone\n"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [ended]
        1 Result file check endmsg [En]
        1 Result file check endmsg [ded]
        1 Result file check endmsg [nowEndednow]
        1 Find endmsg[] in [nowEndednow]
        1 Result file check success msg [ended]
        1 Result file check success msg [En]
        1 Result file check success msg [ded]
        1 Result file check success msg [nowEndednow]
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

// ---- The success text ----

using UpdateSuccess = UpdateExecution;

TEST_F(UpdateSuccess, IsLookedForFromTheStartOfTheOutputOnBothSidesOfTheEndText) {
    EXPECT_TRUE(check(kMessages, "Done\nEnded\n"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_TRUE(check(kMessages, "Ended\nDone\nmore\n"));
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        1 Result file check success msg [Ended]
        1 Result file check success msg [Done]
        1 Find SuccessMsg[] in [Done]
        1 Update Result Check OK
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

TEST_F(UpdateSuccess, IsAnyOfTheSuccessTexts) {
    for (const std::string text : {"first", "second", "third"}) {
        EXPECT_TRUE(
            check("SuccessMessage=first\nSuccessMessage=second\nSuccessMessage=third\n", "start\nthe " + text + "!\n"));
        EXPECT_EQ(TestHost::trace(), traceOf({{"text", text}}, R"(
            4 CEmulexCommon::CheckUpdateResult_() [START]
            1 log_mes_ifs. buf=[SuccessMessage=first]
            1 successMessage[0]=[first]
            1 log_mes_ifs. buf=[SuccessMessage=second]
            1 successMessage[1]=[second]
            1 log_mes_ifs. buf=[SuccessMessage=third]
            1 successMessage[2]=[third]
            1 no endMessage
            1 Result file check success msg [start]
            1 Result file check success msg [the {text}!]
            1 Find SuccessMsg[] in [the {text}!]
            1 Update Result Check OK
            4 CEmulexCommon::CheckUpdateResult_() [END]
        )"));
    }
}

TEST_F(UpdateSuccess, FailsTheCheckWhereItIsMissing) {
    EXPECT_FALSE(check(kMessages, "done\nDo\nne\nEnded\n"));
    EXPECT_EQ(lastError(), 37U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [done]
        1 Result file check endmsg [Do]
        1 Result file check endmsg [ne]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        1 Result file check success msg [done]
        1 Result file check success msg [Do]
        1 Result file check success msg [ne]
        1 Result file check success msg [Ended]
        2 No such success message.
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_EQ(TestHost::sleeps(), looks(1));
}

TEST_F(UpdateSuccess, FailsTheCheckAtOnceInAMissingFileWithoutEndTexts) {
    machine.file(messageFile, "SuccessMessage=Done\n");
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 no endMessage
        2 File Open Error
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
    EXPECT_THAT(TestHost::sleeps(), testing::IsEmpty());
}

TEST_F(UpdateSuccess, FailsTheCheckInAFileThatGoesAwayBehindTheEndText) {
    machine.file(output, textOf(kGoodOutput));
    TestHost::onTrace([this](const std::string& line) {
        if (line == "1 Find endmsg[] in [Ended]") {
            fs::remove(output);
        }
    });
    EXPECT_FALSE(check());
    EXPECT_EQ(lastError(), 17U);
    EXPECT_EQ(TestHost::trace(), traceOf(R"(
        4 CEmulexCommon::CheckUpdateResult_() [START]
        1 log_mes_ifs. buf=[SuccessMessage=Done]
        1 successMessage[0]=[Done]
        1 log_mes_ifs. buf=[EndMessage=Ended]
        1 endMessage[0]=[Ended]
        1 Result file check endmsg [Working]
        1 Result file check endmsg [Done]
        1 Result file check endmsg [Ended]
        1 Find endmsg[] in [Ended]
        2 File Open Error
        4 CEmulexCommon::CheckUpdateResult_() [END]
    )"));
}

}  // namespace
}  // namespace kvl::test
