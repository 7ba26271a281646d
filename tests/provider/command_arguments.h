#ifndef KVL_TESTS_PROVIDER_COMMAND_ARGUMENTS_H
#define KVL_TESTS_PROVIDER_COMMAND_ARGUMENTS_H

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "provider/commands/command_line.h"
#include "provider/provider_error.h"

namespace kvl::test {

constexpr const char* kAccepted = "accepted";

/// @return why the command line isn't carried out; kAccepted if it would be
inline std::string refusal(const provider::Arguments& arguments) {
    try {
        provider::readCommandLine(arguments);
    } catch (const provider::WrongUsage& error) {
        return error.what();
    }
    return kAccepted;
}

/// A word of a command line, and what it is answered.
struct Word {
    std::string text;
    const char* answer;
};

inline void PrintTo(const Word& word, std::ostream* stream) {
    *stream << '[' << word.text << ']';
}

}  // namespace kvl::test

#endif
