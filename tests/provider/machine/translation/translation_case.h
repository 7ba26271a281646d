#ifndef KVL_TESTS_PROVIDER_MACHINE_TRANSLATION_TRANSLATION_CASE_H
#define KVL_TESTS_PROVIDER_MACHINE_TRANSLATION_TRANSLATION_CASE_H

#include <string>
#include <vector>

namespace kvl::test {

/// What a machine prints, and the form in which the library reads it.
struct TranslationCase {
    std::string name;     ///< tool, version and case
    std::string command;  ///< the library's command line, or the file
    std::string printed;
    std::string read;
};

std::vector<TranslationCase> ethtoolCases();
std::vector<TranslationCase> ifconfigCases();
std::vector<TranslationCase> routeCases();
std::vector<TranslationCase> resolverCases();
std::vector<TranslationCase> kernelFileCases();
std::vector<TranslationCase> ifcfgCases();
std::vector<TranslationCase> keyfileCases();

/// All of them.
std::vector<TranslationCase> translationCases();

}  // namespace kvl::test

#endif
