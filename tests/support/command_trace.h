#ifndef KVL_TESTS_SUPPORT_COMMAND_TRACE_H
#define KVL_TESTS_SUPPORT_COMMAND_TRACE_H

#include <string>

#include "tests/support/test_host.h"

namespace kvl::test {

/// Lists of trace lines put one after the other.
Lines operator+(Lines lines, const Lines& more);

/// The line that the shell gets for a command.
std::string shellLine(const std::string& commandLine);

/// What a good command traces.
Lines ran(const std::string& commandLine);

/// The trace of a command that exits with a status, or can't be run.
Lines failed(const std::string& commandLine);

/// The trace of a command that has printed nothing at the first look.
Lines printedNothing(const std::string& commandLine);

/// The lines of an operation that a signature names. `tail` follows it directly.
std::string enter(const std::string& signature, const std::string& tail = "");
std::string leave(const std::string& signature, const std::string& tail = "");
std::string detail(const std::string& signature, const std::string& text);
std::string error(const std::string& signature, const std::string& text);

/// The trace of a question for a vendor's item that isn't there.
Lines itemMissing(const std::string& path);

}  // namespace kvl::test

#endif
