#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_TRANSLATIONS_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_TRANSLATIONS_H

#include <string>
#include <vector>

namespace kvl::provider {

/// What turns an output or a file of a machine into what the library reads.
struct Translation {
    const char* command;  ///< beginning of the library's command line without redirections, or of the file's path
    std::string (*translate)(const std::string& output);  ///< what is in the library's form comes out unchanged
    const char* what;                                     ///< what it changes, for people
};

/// @return all translations; the last one is for every other command and file
const std::vector<Translation>& translations();

/// Looks up the translation of a command or file.
/// @param commandOrFile  a command line without redirections, or a path. "/bin/cat PATH" is the file at that path
const Translation& findTranslation(const std::string& commandOrFile);

/// @return the output, or the content of the file, as the library reads it
std::string translated(const std::string& commandOrFile, const std::string& output);

}  // namespace kvl::provider

#endif
