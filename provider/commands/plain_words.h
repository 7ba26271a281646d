#ifndef KVL_PROVIDER_COMMANDS_PLAIN_WORDS_H
#define KVL_PROVIDER_COMMANDS_PLAIN_WORDS_H

#include <string>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace kvl::provider {

/// The words of the update commands that end up in command lines of a shell. Each is checked against its form when the
/// command line is read; anything else is wrong usage.

/// Adds --module, the directory of an update module, which must be given.
/// @param directory  receives the absolute path
void addModule(CLI::App& command, std::string& directory);

/// Adds --unique-name, which must be given.
void addUniqueName(CLI::App& command, std::string& name);

/// Adds --scratch, a directory to unpack in.
/// @param directory  receives the absolute path
void addScratch(CLI::App& command, std::string& directory);

}  // namespace kvl::provider

#endif
