#ifndef KVL_TESTS_PROVIDER_KVL_PROGRAM_H
#define KVL_TESTS_PROVIDER_KVL_PROGRAM_H

#include <string>
#include <vector>

#include "machines/private_root.h"
#include "tests/machines/outside.h"

namespace kvl::test {

/// The words as one line for the shell.
std::string quoted(const std::vector<std::string>& words);

/// Runs kvl on this machine.
Outcome runKvl(const std::vector<std::string>& arguments);

/// Runs kvl on a recorded server, by its own replay.
Outcome replayKvl(const std::string& machine, const std::vector<std::string>& arguments);

/// Runs kvl on a terminal of its own. @return all that the terminal got
std::string runOnTerminal(const std::vector<std::string>& arguments);

/// Runs a script in a private root on a terminal of its own, 200 columns wide, that shows nothing of what is typed.
/// @param typed  is there from the start
/// @return all that the terminal got
std::string runOnTerminalInside(const machines::PrivateRootOptions& options, const std::string& script,
                                const std::string& typed);

/// What is typed on a terminal, and when.
struct TypedOnceShown {
    std::string awaited;  ///< text that the terminal shows before; empty for at once
    std::string words;    ///< Ctrl-C is an interrupt
};

std::string runOnTerminalInside(const machines::PrivateRootOptions& options, const std::string& script,
                                const TypedOnceShown& typed);

/// A private root in which kvl can be run on a recorded server.
machines::PrivateRootOptions rootWithKvl(const std::string& recording);

/// The file that kvl locks in a private root.
std::string lockFileInside();

/// A line for the shell that makes the directory of that file, as kvl does, and a program that locks the file while it
/// runs the words after it.
std::string lockingInside();

/// Copies a shipped recording into a directory, for a test that changes it. @return the copy
std::string copyRecording(const std::string& machine, const ScratchDirectory& scratch);

}  // namespace kvl::test

#endif
