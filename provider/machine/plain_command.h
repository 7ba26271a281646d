#ifndef KVL_PROVIDER_MACHINE_PLAIN_COMMAND_H
#define KVL_PROVIDER_MACHINE_PLAIN_COMMAND_H

#include <optional>
#include <string>
#include <vector>

namespace kvl::provider {

/// A command line that needs no shell: `PROGRAM WORD... [| grep WORD] [> FILE] [2> /dev/null]`.
struct PlainCommand {
    std::vector<std::string> words;   ///< The absolute path of the program, then its arguments.
    std::vector<std::string> filter;  ///< `grep` and its word; empty where the output is not filtered.
    std::string outputFile;           ///< Empty where the output goes to this process's standard output.
    bool dropsErrors = false;         ///< The standard error of the last program is thrown away.
};

/// @return nothing if the line has another form, or a word of it means something to a shell
std::optional<PlainCommand> readPlainCommand(const std::string& line);

/// The command as the library wrote it, without redirections.
std::string describe(const PlainCommand& command);

/// @return true if a shell takes the text as one word, unchanged, and a program doesn't take it for an option
bool isPlainWord(const std::string& text);

}  // namespace kvl::provider

#endif
