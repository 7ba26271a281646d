#ifndef KVL_PROVIDER_COMMANDS_ANSWER_H
#define KVL_PROVIDER_COMMANDS_ANSWER_H

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "provider/exit_codes.h"
#include "provider/library/adapter_failure.h"

namespace CLI {
class App;
}

namespace kvl::provider {

enum class AnswerFormat { kText, kJson };

/// Something that could not be had.
struct Note {
    /// What the document tells by itself.
    Note(const std::string& words) : sentence(words) {}

    /// What the document tells among its failures.
    /// @param what  what the failure is about, which begins the sentence; empty if the failure says it
    Note(const std::string& what, const Failure& why);

    std::string sentence;
    std::string about;
    std::optional<Failure> failure;
};

/// What an adapter command has found out.
struct Answer {
    std::string text;
    std::string document;     ///< the same for programs: JSON
    std::vector<Note> notes;  ///< what could not be had; the failures among them are added to the document
    ExitCode exitCode = kReportWritten;
};

/// Adds --format.
/// @param format  receives what was given; must live as long as the command
void addAnswerFormat(CLI::App& command, AnswerFormat& format);

/// Finds an answer and prints it. What can't be answered is told as a document too, where one was asked for.
/// @return the exit code
int printAnswer(AnswerFormat format, const std::function<Answer()>& find);

/// The text of a document. What the tool prints needn't be UTF-8, which documents are, so what isn't is replaced.
std::string jsonText(const nlohmann::ordered_json& document);

/// A failure for programs.
nlohmann::ordered_json document(const Failure& failure);

}  // namespace kvl::provider

#endif
