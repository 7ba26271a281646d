#include "provider/adapters/adapter_answer.h"

#include <CLI/CLI.hpp>
#include <iostream>

namespace kvl::provider {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kIndent = 2;

Json errorDocument(const ProviderError& error) {
    const auto* failure = dynamic_cast<const AdapterFailure*>(&error);
    return failure != nullptr
               ? document(failure->failure())
               : Json{{"number", nullptr}, {"name", nullptr}, {"meaning", error.what()}, {"next", nullptr}};
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
    std::cout << (format == AnswerFormat::kJson ? answer.document : answer.text);
    finishOutput();
    for (const std::string& note : answer.notes) {
        std::cerr << "kvl: " << note << '\n';
    }
    return answer.exitCode;
}

std::string jsonText(const Json& document) {
    return document.dump(kIndent, ' ', false, Json::error_handler_t::replace) + "\n";
}

Json document(const Failure& failure) {
    return {{"number", failure.number}, {"name", failure.name}, {"meaning", failure.meaning}, {"next", failure.next}};
}

}  // namespace kvl::provider
