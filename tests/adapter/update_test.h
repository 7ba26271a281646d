#ifndef KVL_TESTS_ADAPTER_UPDATE_TEST_H
#define KVL_TESTS_ADAPTER_UPDATE_TEST_H

#include <unistd.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/adapter/adapter_test.h"
#include "tests/adapter/literal_trace.h"
#include "tests/foundation/descriptor_in_file.h"

namespace kvl::test {

/// Where the build puts the update modules: a directory each, with the archive "module.zip".
inline const std::string kModules = std::string(KVL_BUILD_DIRECTORY) + "/machines/modules";

using Sleeps = std::vector<unsigned long>;

/// The lines of a text file.
inline std::string textOf(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

/// A test of an update: a tool that is laid down answers each of its calls in a way of its own.
class UpdateTest : public AdapterTest {
protected:
    /// Lays down a program whose n-th call carries out the n-th script, and each call after those the last. It notes
    /// every call.
    void layTool(const std::string& path, const Lines& scripts) {
        machine.file(kCalls, "");
        for (std::size_t place = 0; place < scripts.size(); ++place) {
            machine.file(kScripts + "/" + std::to_string(place + 1), scripts[place] + "\n");
        }
        machine.program(path, "#!/bin/sh\nwords=\nfor word; do words=\"$words[$word]\"; done\necho \"$PWD $words\" >>" +
                                  kCalls + "\ncall=$(wc -l <" + kCalls + ")\n[ $call -le " +
                                  std::to_string(scripts.size()) + " ] || call=" + std::to_string(scripts.size()) +
                                  "\n. " + kScripts + "/$call\n");
    }

    /// The calls of the program, oldest first, each as "DIRECTORY [ARGUMENT][ARGUMENT]".
    static Lines calls() {
        Lines lines;
        const std::string text = contentOf(kCalls);
        for (std::size_t begin = 0, end = text.find('\n'); end != std::string::npos;
             begin = end + 1, end = text.find('\n', begin)) {
            lines.push_back(text.substr(begin, end - begin));
        }
        return lines;
    }

    /// A script that prints these lines.
    static std::string printing(const Lines& lines) { return "cat <<'END'\n" + textOf(lines) + "END"; }

    /// Makes a call during which the programs that it runs print to a file instead of the test's own output.
    static bool quietly(const std::function<bool()>& call) {
        const DescriptorInFile output(STDOUT_FILENO, "/tmp/output");
        const DescriptorInFile errors(STDERR_FILENO, "/tmp/errors");
        return call();
    }

    /// Has the n-th `Sleep` do something; n counts from 1.
    static void atSleep(std::size_t number, const std::function<void()>& action) {
        TestHost::onSleep([number, action] {
            if (TestHost::sleeps().size() == number) {
                action();
            }
        });
    }

private:
    inline static const std::string kCalls = "/tmp/calls";
    inline static const std::string kScripts = "/tmp/scripts";
};

}  // namespace kvl::test

#endif
