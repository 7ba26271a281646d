#ifndef KVL_PROVIDER_COMMANDS_ANSWER_H
#define KVL_PROVIDER_COMMANDS_ANSWER_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "provider/commands/command_line.h"
#include "provider/library/adapter_failure.h"
#include "provider/output/json.h"

namespace kvl::provider {

/// The exit codes of the commands that answer a question. Some commands have more.
enum AnswerExit : int {
    kAnswered = 0,
    kIncomplete = 1,  ///< The same, but something could not be read: named on standard error.
    kNoAnswer = 3,    ///< The reason stands on standard error.
};

enum class AnswerFormat { kText, kJson };

/// Something that an answer lacks.
struct Gap {
    /// One that the document shows by itself.
    explicit Gap(const std::string& why) : sentence(why) {}

    /// One that the document lists among its failures.
    /// @param what  what the failure is about, which begins the sentence; empty if the failure says it
    Gap(const std::string& what, const Failure& why);

    std::string sentence;
    std::string about;
    std::optional<Failure> failure;
};

/// What a command has found out.
// The moves of the JSON type are noexcept, which clang-tidy doesn't believe. NOLINTNEXTLINE(bugprone-exception-escape)
struct Answer {
    std::string text;
    Json document;          ///< the same for programs
    std::vector<Gap> gaps;  ///< the failures among them are added to the document
    int exitCode = kAnswered;
};

/// Adds --format.
/// @param format  receives what was given; must live as long as the command
void addAnswerFormat(CLI::App& command, AnswerFormat& format);

/// Has a request answer a question.
/// @param format  as --format has received it, and must live as long as the request
void answerWith(Request& request, const AnswerFormat& format, const std::function<Answer()>& find);

/// Finds an answer and prints it. If there is none, prints why, also as a document if one was asked for.
/// @return the exit code
int printAnswer(AnswerFormat format, const std::function<Answer()>& find);

/// Prints a document. @throws ProviderError if it can't be
void printDocument(const Json& document);

/// The document of a failure that ends the program.
Json errorDocument(const ProviderError& error);

/// A failure for programs.
Json documentOf(const Failure& failure);

}  // namespace kvl::provider

#endif
