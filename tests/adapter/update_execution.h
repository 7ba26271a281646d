#ifndef KVL_TESTS_ADAPTER_UPDATE_EXECUTION_H
#define KVL_TESTS_ADAPTER_UPDATE_EXECUTION_H

#include <string>

#include "tests/adapter/update_test.h"

namespace kvl::test {

/// Updaters and the checks of their output, after an earlier error that a good call leaves.
class UpdateExecution : public UpdateTest {
protected:
    static constexpr unsigned long kEarlierError = 38;
    inline static const Lines kGoodOutput = {"Working", "Done", "Ended"};
    inline static const std::string kMessages = "SuccessMessage=Done\nEndMessage=Ended\n";

    void SetUp() override {
        UpdateTest::SetUp();
        CEmulexCommon::SetLastError(kEarlierError);
        machine.file(messageFile, kMessages);
    }

    bool update(const std::string& command, int resultMode) {
        exitCode = 1000;
        const bool isUpdated = CEmulexCommon::EmulexUpdate(command, output, workDir, &exitCode, reportDir, messageFile,
                                                           resultMode, module);
        EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
        return isUpdated;
    }

    bool check() { return CEmulexCommon::CheckUpdateResult_(output, messageFile, module); }

    /// Checks an output that is all there with a message file of these lines.
    bool check(const std::string& messageText, const std::string& outputText) {
        machine.file(messageFile, messageText);
        machine.file(output, outputText);
        forget();
        CEmulexCommon::SetLastError(kEarlierError);
        return check();
    }

    static unsigned long lastError() { return CEmulexCommon::GetLastError(); }

    static Sleeps looks(std::size_t number) { return Sleeps(number, 30000); }

    std::string output = "/tmp/result";
    std::string workDir;
    std::string reportDir;
    std::string messageFile = "/tmp/message.txt";
    unsigned long exitCode = 0;
};

}  // namespace kvl::test

#endif
