#include "provider/operation/operation.h"

#include <cstring>
#include <iostream>

#include "provider/run/noted_signals.h"
#include "provider/run/scratch_installation.h"

namespace kvl::provider {
namespace {

constexpr const char* kDryRunEnds = "Nothing was done: this is a dry run.\n";

/// One operation on its way through the stages.
class Performance : private Execution {
public:
    Performance(const OperationOptions& options, Run& run, Operation& operation)
        : options_(options), run_(run), operation_(operation) {}

    OperationReport perform();

private:
    int signal() const override { return signals_ ? signals_->first() : 0; }
    void reportDone(const std::string& sentence) override;

    void showPlan();
    bool isAgreedTo();
    void carryOut();
    void end(const Ending& ending);
    void skip(const std::string& why);
    void reportError(const std::string& sentence);
    void announceSignal(int number);
    std::string withSignal(const std::string& sentence) const;

    const OperationOptions& options_;
    Run& run_;
    Operation& operation_;
    std::unique_ptr<NotedSignals> signals_;  // from the moment at which it is carried out
    OperationReport report_;
};

OperationReport Performance::perform() {
    const std::string idle = operation_.look();
    if (!idle.empty()) {
        skip(idle);
        return report_;
    }
    if (!options_.isDry) {
        operation_.readState();
    }
    showPlan();
    if (options_.isDry) {
        report_.result = Result::kPlanned;
    } else if (isAgreedTo()) {
        carryOut();
    } else {
        skip("the operator said no");
        return report_;
    }
    const bool isWell = report_.result == Result::kPlanned || report_.result == Result::kDone;
    if (isWell && !report_.plan->skipped.empty()) {
        skip(report_.plan->skipped);
    }
    return report_;
}

void Performance::showPlan() {
    report_.plan = operation_.plan();
    const std::string text = describe(*report_.plan) + (options_.isDry ? kDryRunEnds : "");
    if (options_.printsPlan && !run_.print(text)) {
        throw ProviderError("the plan could not be written to standard output");
    }
}

bool Performance::isAgreedTo() {
    const std::string question = operation_.question();
    if (question.empty() || options_.isAgreedTo) {
        return true;
    }
    run_.display().clear();
    std::cerr << question << " [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

void Performance::carryOut() {
    signals_ = std::make_unique<NotedSignals>([this](int number) { announceSignal(number); });
    operation_.prepare();
    OperationRecord(operation_.subject()).begun(operation_.source());
    end(operation_.carryOut(*this));
    signals_.reset();
}

void Performance::end(const Ending& ending) {
    const OperationRecord record(operation_.subject());
    report_.result = ending.result;
    report_.failure = ending.failure;
    report_.signal = signal();
    record.signalled(report_.signal);
    if (ending.result == Result::kDone) {
        record.done(ending.record);
        reportDone(withSignal(ending.sentence));
    } else {
        const std::string why = ending.failure ? describe(*ending.failure) : "";
        record.failed(why.empty() ? ending.sentence : why + "; " + ending.sentence);
        if (!why.empty()) {
            reportError(why);
        }
        reportError(withSignal(ending.sentence));
    }
    for (const std::string& remark : operation_.conclude(ending)) {
        reportError(remark);
    }
}

void Performance::skip(const std::string& why) {
    if (!options_.isDry) {
        OperationRecord(operation_.subject()).skipped(why);
    }
    report_.result = Result::kSkipped;
    reportError("skipped: " + why);
}

void Performance::reportDone(const std::string& sentence) {
    report_.done.push_back(sentence);
    if (options_.printsPlan && !run_.print(sentence + "\n")) {
        reportError("this could not be written to standard output: " + sentence);
    }
}

void Performance::reportError(const std::string& sentence) {
    report_.errors.push_back(sentence);
    run_.reportError(sentence);
}

void Performance::announceSignal(int number) {
    run_.announce(std::string("kvl: ") + strsignal(number) +
                  ": noted, and the update goes on to its end; an updater that is broken off can leave an adapter or a "
                  "tool that doesn't work");
}

std::string Performance::withSignal(const std::string& sentence) const {
    return report_.signal == 0 ? sentence : sentence + "; " + strsignal(report_.signal) + " came meanwhile";
}

}  // namespace

OperationReport perform(const OperationOptions& options, const MakeOperation& make) {
    std::optional<ScratchInstallation> scratch;
    if (options.isDry) {
        scratch.emplace();
    }
    Run run(options.run, options.isDry ? Turn::kNotNeeded : Turn::kTake);
    const std::unique_ptr<Operation> operation = make(run);
    return Performance(options, run, *operation).perform();
}

std::vector<std::string> stepLines(const Plan& plan) {
    std::vector<std::string> lines;
    for (const Step& step : plan.steps) {
        lines.insert(lines.end(), step.plan.begin(), step.plan.end());
    }
    return lines;
}

std::string describe(const Plan& plan) {
    std::string text = plan.title + "\n";
    for (const std::string& fact : plan.facts) {
        text += "  " + fact + "\n";
    }
    std::size_t number = 0;
    for (const std::string& line : stepLines(plan)) {
        text += "  " + std::to_string(++number) + ". " + line + "\n";
    }
    return text;
}

}  // namespace kvl::provider
