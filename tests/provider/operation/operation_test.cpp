#include "provider/operation/operation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "reference_host/install_path.h"

namespace {

using kvl::provider::Change;
using kvl::provider::Ending;
using kvl::provider::Execution;
using kvl::provider::Operation;
using kvl::provider::OperationOptions;
using kvl::provider::OperationReport;
using kvl::provider::perform;
using kvl::provider::Plan;
using kvl::provider::Result;
using kvl::provider::Subject;
using kvl::provider::TraceEvent;
using testing::ElementsAre;
using testing::IsEmpty;

/// Notes through which stages it is taken.
class NotingOperation : public Operation {
public:
    NotingOperation(std::vector<std::string>& stages, std::string idle, std::string skipped)
        : stages_(stages), idle_(std::move(idle)), skipped_(std::move(skipped)) {}

    Subject subject() const override { return {"cna", "a test"}; }
    std::string look() override {
        stages_.emplace_back(kvl::host::isInstallationTemporary() ? "look" : "look in the installation");
        return idle_;
    }
    void readState() override { stages_.emplace_back("readState"); }
    Plan plan() const override {
        stages_.emplace_back("plan");
        Plan plan;
        plan.title = "Title";
        plan.facts = {"a fact"};
        plan.steps = {{{"one", "two"}, TraceEvent::kUnpacking, "doing one", Change::kNothing, ""},
                      {{"three"}, TraceEvent::kNone, "", Change::kNothing, ""}};
        plan.skipped = skipped_;
        return plan;
    }
    std::string source() const override { return "nothing"; }
    Ending carryOut(Execution&) override {
        stages_.emplace_back("carryOut");
        return {};
    }

private:
    std::vector<std::string>& stages_;
    const std::string idle_;
    const std::string skipped_;
};

struct Dry {
    std::vector<std::string> stages;
    OperationReport report;
    std::string output;
    std::string errors;
};

/// Performs one without changing anything.
Dry performDry(const std::string& idle, const std::string& skipped, bool printsPlan = true) {
    Dry dry;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    OperationOptions options;
    options.isDry = true;
    options.printsPlan = printsPlan;
    dry.report = perform(
        options, [&](kvl::provider::Run&) { return std::make_unique<NotingOperation>(dry.stages, idle, skipped); });
    dry.output = testing::internal::GetCapturedStdout();
    dry.errors = testing::internal::GetCapturedStderr();
    return dry;
}

TEST(Operation, LooksAndPlansAloneInADryRunAndInAnotherInstallation) {
    const Dry dry = performDry("", "");
    EXPECT_THAT(dry.stages, ElementsAre("look", "plan"));
    EXPECT_EQ(Result::kPlanned, dry.report.result);
    EXPECT_EQ("Title\n  a fact\n  1. one\n  2. two\n  3. three\nNothing was done: this is a dry run.\n", dry.output);
    EXPECT_EQ("", dry.errors);
    EXPECT_FALSE(kvl::host::isInstallationTemporary());
}

TEST(Operation, IsNotPlannedWhereThereIsNothingToDo) {
    const Dry dry = performDry("it is done", "");
    EXPECT_THAT(dry.stages, ElementsAre("look"));
    EXPECT_EQ(Result::kSkipped, dry.report.result);
    EXPECT_FALSE(dry.report.plan);
    EXPECT_EQ("", dry.output);
    EXPECT_EQ("kvl: skipped: it is done\n", dry.errors);
}

TEST(Operation, IsSkippedWhereAPartIsLeftOut) {
    const Dry dry = performDry("", "the other part can't be");
    EXPECT_EQ(Result::kSkipped, dry.report.result);
    EXPECT_THAT(dry.report.errors, ElementsAre("skipped: the other part can't be"));
    EXPECT_EQ("kvl: skipped: the other part can't be\n", dry.errors);
}

TEST(Operation, PrintsNoPlanWhereADocumentIsWanted) {
    const Dry dry = performDry("", "", false);
    EXPECT_EQ("", dry.output);
    ASSERT_TRUE(dry.report.plan);
    EXPECT_THAT(stepLines(*dry.report.plan), ElementsAre("one", "two", "three"));
    EXPECT_THAT(dry.report.done, IsEmpty());
}

}  // namespace
