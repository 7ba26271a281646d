#include "provider/commands/answer.h"

#include <CLI/CLI.hpp>
#include <iostream>

namespace kvl::provider {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kIndent = 2;

Json orNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

Json errorDocument(const ProviderError& error) {
    const auto* failure = dynamic_cast<const AdapterFailure*>(&error);
    return document(failure != nullptr ? failure->failure() : Failure{"", "", error.what(), ""});
}

/// The document with the failures that the notes tell.
std::string wholeDocument(const Answer& answer) {
    Json failures = Json::array();
    for (const Note& note : answer.notes) {
        if (note.failure) {
            Json entry = {{"about", orNull(note.about)}};
            entry.update(document(*note.failure));
            failures.push_back(entry);
        }
    }
    if (failures.empty()) {
        return answer.document;
    }
    Json whole = Json::parse(answer.document);
    whole["failures"] = failures;
    return jsonText(whole);
}

void finishOutput() {
    if (!std::cout.flush()) {
        throw ProviderError(kNothingCollected, "the answer could not be written to standard output");
    }
}

}  // namespace

void addAnswerFormat(CLI::App& command, AnswerFormat& format) {
    const auto take = [&format](const std::string& name) {
        if (name != "text" && name != "json") {
            throw CLI::ValidationError("--format: '" + name + "' is none of text|json");
        }
        format = name == "json" ? AnswerFormat::kJson : AnswerFormat::kText;
    };
    command.add_option_function<std::string>("--format", take, "'text' for eyes (default), 'json' for programs")
        ->type_name("text|json");
}

Note::Note(const std::string& what, const Failure& why)
    : sentence((what.empty() ? "" : what + ": ") + describe(why)), about(what), failure(why) {}

int printAnswer(AnswerFormat format, const std::function<Answer()>& find) {
    Answer answer;
    try {
        answer = find();
    } catch (const ProviderError& error) {
        if (format == AnswerFormat::kJson) {
            std::cout << jsonText({{"error", errorDocument(error)}});
            finishOutput();
        }
        throw;
    }
    std::cout << (format == AnswerFormat::kJson ? wholeDocument(answer) : answer.text);
    finishOutput();
    for (const Note& note : answer.notes) {
        std::cerr << "kvl: " << note.sentence << '\n';
    }
    return answer.exitCode;
}

std::string jsonText(const Json& document) {
    return document.dump(kIndent, ' ', false, Json::error_handler_t::replace) + "\n";
}

Json document(const Failure& failure) {
    return {{"number", orNull(failure.number)},
            {"name", orNull(failure.name)},
            {"meaning", failure.meaning},
            {"next", orNull(failure.next)}};
}

}  // namespace kvl::provider
