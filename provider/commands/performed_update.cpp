#include "provider/commands/performed_update.h"

#include <unistd.h>

#include <array>
#include <iostream>

#include "provider/commands/options.h"
#include "provider/run/noted_signals.h"

namespace kvl::provider {
namespace {

/// A result for scripts and for programs.
struct NamedResult {
    Result result;
    const char* name;
    UpdateExit exitCode;
};

constexpr std::array<NamedResult, 5> kResults = {{
    {Result::kPlanned, "planned", kUpdated},
    {Result::kDone, "done", kUpdated},
    {Result::kSkipped, "skipped", kSkippedOnPurpose},
    {Result::kUnchanged, "failed-unchanged", kFailedUnchanged},
    {Result::kChanged, "failed-changed", kFailedChanged},
}};

const NamedResult& rowOf(Result result) {
    for (const NamedResult& row : kResults) {
        if (row.result == result) {
            return row;
        }
    }
    return kResults.back();
}

Json documentOf(const OperationReport& report) {
    Json document = {{"result", rowOf(report.result).name}, {"plan", nullptr}, {"done", report.done}};
    if (report.plan) {
        document["plan"] = {
            {"title", report.plan->title}, {"facts", report.plan->facts}, {"steps", stepLines(*report.plan)}};
    }
    document["messages"] = report.errors;
    if (report.failure) {
        document["failure"] = documentOf(*report.failure);
    }
    if (report.signal != 0) {
        document["interrupted_by"] = signalName(report.signal);
    }
    return document;
}

OperationReport performOrPrintError(const UpdateOptions& options, const MakeOperation& make) {
    const bool isText = options.format == AnswerFormat::kText;
    try {
        return perform({options.isDry, options.isAgreedTo, isText, options.run}, make);
    } catch (const ProviderError& error) {
        if (!isText) {
            printDocument({{"error", errorDocument(error)}});
        }
        throw;
    }
}

}  // namespace

void addUpdateOptions(CLI::App& command, UpdateOptions& options, Agreement agreement) {
    addFlag(command, "--dry-run", options.isDry, "Look and show the plan, and change nothing");
    if (agreement == Agreement::kNeeded) {
        addFlag(command, "--yes", options.isAgreedTo, "Don't ask");
    }
    addAnswerFormat(command, options.format);
    addRunOptions(command, options.run);
}

void requireAgreement(const UpdateOptions& options) {
    if (options.isDry || options.isAgreedTo) {
        return;
    }
    if (options.format == AnswerFormat::kJson) {
        throw WrongUsage("nothing is asked with --format json: give --dry-run to see the plan, or --yes to do it");
    }
    if (isatty(STDIN_FILENO) != 1) {
        throw WrongUsage("there is no terminal to ask on: look at the plan with --dry-run, and give --yes to do it");
    }
}

int performUpdate(const UpdateOptions& options, const MakeOperation& make) {
    const OperationReport report = performOrPrintError(options, make);
    if (options.format == AnswerFormat::kJson) {
        try {
            printDocument(documentOf(report));
        } catch (const ProviderError& error) {
            std::cerr << "kvl: " << error.what() << '\n';  // the result stays what it is
        }
    }
    return rowOf(report.result).exitCode;
}

}  // namespace kvl::provider
