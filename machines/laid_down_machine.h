#ifndef KVL_MACHINES_LAID_DOWN_MACHINE_H
#define KVL_MACHINES_LAID_DOWN_MACHINE_H

#include <string>
#include <vector>

namespace kvl::machines {

/// How a laid-down command ends.
struct Ending {
    int status = 0;
    /// Signal that the command dies of; 0: none.
    int signal = 0;

    static Ending bySignal(int number) { return {0, number}; }
};

/// The machine that a program inside a private root meets: commands that print and end as laid down, and files. All
/// operations work on the root of the calling process, which must be a private root.
class LaidDownMachine {
public:
    /// Throws PrivateRootError outside of a private root.
    LaidDownMachine();

    /// Lays down what a command prints to standard output, byte for byte, and how it ends, when it is called with
    /// exactly these arguments. `commandLine` is its absolute path and its arguments with one blank between words.
    /// Called with arguments that nothing is laid down for, the command is noted as missing and ends with 127.
    /// Replaces what an earlier call laid down for the same line.
    void command(const std::string& commandLine, const std::string& output, Ending ending = {});

    /// The same for every call of the command at `path` that has no entry of its own.
    void anyCommand(const std::string& path, const std::string& output, Ending ending = {});

    /// Lays down a program of its own: an executable file, usually a script that begins with "#!/bin/sh".
    void program(const std::string& path, const std::string& text);

    /// Removes the command at `path` with all that was laid down for it, ordinary tools included. The program is then
    /// missing.
    void dropCommand(const std::string& path);

    /// Writes a file, and makes the directories above it.
    void file(const std::string& path, const std::string& text);

    /// Makes a directory and those above it.
    void directory(const std::string& path);

    /// Lays a recorded server down (see machines/README.md): its files at their own paths, its commands as stand-ins.
    void load(const std::string& recording);

    /// The stand-ins that ran, oldest first: absolute path and arguments.
    std::vector<std::string> commandsRun() const;

    /// Those of commandsRun that nothing was laid down for.
    std::vector<std::string> commandsMissing() const;

    /// Empties both lists.
    void forgetCommands();

    /// Returns the root to its first state. Mounts, and so all binds, stay.
    void reset();
};

}  // namespace kvl::machines

#endif
