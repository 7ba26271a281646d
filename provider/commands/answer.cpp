#include "provider/commands/answer.h"

#include <iostream>

#include "provider/commands/options.h"

namespace kvl::provider {
namespace {

void print(const std::string& text) {
    if (!(std::cout << text).flush()) {
        throw ProviderError("the answer could not be written to standard output");
    }
}

/// The document with the failures that keep the answer from being whole.
Json wholeDocument(const Answer& answer) {
    Json failures = Json::array();
    for (const Gap& gap : answer.gaps) {
        if (gap.failure) {
            Json entry = {{"about", orNull(gap.about)}};
            entry.update(documentOf(*gap.failure));
            failures.push_back(entry);
        }
    }
    Json whole = answer.document;
    if (!failures.empty()) {
        whole["failures"] = failures;
    }
    return whole;
}

}  // namespace

void addAnswerFormat(CLI::App& command, AnswerFormat& format) {
    const auto receive = [&format](std::size_t place) {
        format = place == 0 ? AnswerFormat::kText : AnswerFormat::kJson;
    };
    addOneOf(command, "--format", {"text", "json"}, "|", receive, "'text' for eyes (default), 'json' for programs");
}

Gap::Gap(const std::string& what, const Failure& why)
    : sentence((what.empty() ? "" : what + ": ") + describe(why)), about(what), failure(why) {}

void answerWith(Request& request, const AnswerFormat& format, const std::function<Answer()>& find) {
    request.failureCode = kNoAnswer;
    request.run = [&format, find] { return printAnswer(format, find); };
}

int printAnswer(AnswerFormat format, const std::function<Answer()>& find) {
    Answer answer;
    try {
        answer = find();
    } catch (const ProviderError& error) {
        if (format == AnswerFormat::kJson) {
            printDocument({{"error", errorDocument(error)}});
        }
        throw;
    }
    if (format == AnswerFormat::kJson) {
        printDocument(wholeDocument(answer));
    } else {
        print(answer.text);
    }
    for (const Gap& gap : answer.gaps) {
        std::cerr << "kvl: " << gap.sentence << '\n';
    }
    return answer.exitCode;
}

void printDocument(const Json& document) {
    print(jsonText(document));
}

Json errorDocument(const ProviderError& error) {
    const auto* failure = dynamic_cast<const AdapterFailure*>(&error);
    return documentOf(failure != nullptr ? failure->failure() : Failure{"", "", error.what(), ""});
}

Json documentOf(const Failure& failure) {
    return {{"number", orNull(failure.number)},
            {"name", orNull(failure.name)},
            {"meaning", failure.meaning},
            {"next", orNull(failure.next)}};
}

}  // namespace kvl::provider
