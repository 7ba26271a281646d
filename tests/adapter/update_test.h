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

// ---- What the steps of an update trace ----

/// @param inner  what the folders below it trace
inline Lines deleteFolderTrace(const Lines& inner = {}) {
    return Lines{"4 CUnzip_Utility::DeleteFolder [START]"} + inner + Lines{"4 CUnzip_Utility::DeleteFolder [END]"};
}

/// A module's archive that is unpacked, or fails with these lines.
inline Lines moduleUnzipTrace(const std::string& archive, const std::string& folder, const Lines& failure = {}) {
    return Lines{"4 CUnzip_Utility::UpdateModuleUnzip [START]", "4 CUnzip_Utility::Unzip [START]",
                 "1 CUnzip_Utility::Unzip ARG Check tsZipPath=" + archive + " tsOutPath=" + folder} +
           failure + Lines{"4 CUnzip_Utility::Unzip [END]", "4 CUnzip_Utility::UpdateModuleUnzip [END]"};
}

inline std::string unzipFailedTrace(int status) {
    return "2 CUnzip_Utility::Unzip() unzip() failed. dwRtnCode=" + std::to_string(status);
}

/// A module without an archive.
inline const Lines kNoArchiveTrace = {"4 CUnzip_Utility::UpdateModuleUnzip [START]",
                                      "4 CUnzip_Utility::UpdateModuleUnzip [END]"};

/// One run of an updater.
/// @param judgement  what its judging traces
inline Lines updaterTrace(int resultMode, const Lines& judgement) {
    return Lines{"4 CEmulexCommon::EmulexUpdate() Resultmode = " + std::to_string(resultMode) + " [START]"} +
           judgement + Lines{"4 CEmulexCommon::EmulexUpdate() [END]"};
}

/// The one line behind the start of an updater that could not be run.
inline std::string notRunTrace(const std::string& command) {
    return "2 Failed to update execute(" + command + ")(11)(Windows Error code:17).";
}

/// The last line of an updater's judgement that is a failure.
inline std::string updateFailedTrace(const std::string& subject) {
    return "2 Failed to update(" + subject + ").";
}

inline std::string notOpenedTrace(const std::string& path) {
    return "2 Failed to open file(" + path + ").";
}

/// The check of an updater's output.
inline Lines resultCheckTrace(const Lines& lines) {
    return Lines{"4 CEmulexCommon::CheckUpdateResult_() [START]"} + lines +
           Lines{"4 CEmulexCommon::CheckUpdateResult_() [END]"};
}

/// One look through the lines of an output for an end text; if it is found, then in the last of them.
inline Lines endLookTrace(const Lines& output, bool isFound) {
    Lines lines;
    for (const std::string& line : output) {
        lines.push_back("1 Result file check endmsg [" + line + "]");
    }
    return isFound ? lines + Lines{"1 Find endmsg[] in [" + output.back() + "]"} : lines;
}

/// The look for a success text, found in the last of these lines or not at all, and what follows from it.
inline Lines successLookTrace(const Lines& output, bool isFound) {
    Lines lines;
    for (const std::string& line : output) {
        lines.push_back("1 Result file check success msg [" + line + "]");
    }
    return lines + (isFound ? Lines{"1 Find SuccessMsg[] in [" + output.back() + "]", "1 Update Result Check OK"}
                            : Lines{"2 No such success message."});
}

/// The same lines several times.
inline Lines operator*(std::size_t times, const Lines& lines) {
    Lines all;
    for (std::size_t time = 0; time < times; ++time) {
        all.insert(all.end(), lines.begin(), lines.end());
    }
    return all;
}

/// A message file of success texts and, behind them, end texts.
struct MessageFile {
    Lines success;
    Lines end;

    std::string text() const {
        std::string lines;
        for (const std::string& text : success) {
            lines += "SuccessMessage=" + text + "\n";
        }
        for (const std::string& text : end) {
            lines += "EndMessage=" + text + "\n";
        }
        return lines;
    }

    /// What reading it traces; up to five texts of each kind.
    Lines trace() const { return successTrace(success) + endTrace(end) + missingTrace(); }

    /// What reading the texts of one kind traces, the first of them being the first of its file.
    static Lines successTrace(const Lines& texts) { return kindTrace("SuccessMessage=", "successMessage", texts); }
    static Lines endTrace(const Lines& texts) { return kindTrace("EndMessage=", "endMessage", texts); }

private:
    Lines missingTrace() const {
        if (success.empty()) {
            return {"2 no successMessage"};
        }
        return end.empty() ? Lines{"1 no endMessage"} : Lines{};
    }

    static Lines kindTrace(const std::string& key, const std::string& name, const Lines& texts) {
        Lines lines;
        for (std::size_t place = 0; place < texts.size(); ++place) {
            lines.push_back("1 log_mes_ifs. buf=[" + key + texts[place] + "]");
            lines.push_back("1 " + name + "[" + std::to_string(place) + "]=[" + texts[place] + "]");
        }
        return lines;
    }
};

/// An updater whose output holds the end text in its last line at the first look, and the success text in the line
/// `successAt`, counted from 0.
inline Lines goodUpdaterTrace(const MessageFile& messages, const Lines& output, std::size_t successAt) {
    const Lines upToSuccess(output.begin(), output.begin() + static_cast<std::ptrdiff_t>(successAt) + 1);
    return updaterTrace(
        3, resultCheckTrace(messages.trace() + endLookTrace(output, true) + successLookTrace(upToSuccess, true)));
}

// ---- The fixture ----

/// A test of an update: a tool that is laid down answers each of its calls in a way of its own.
class UpdateTest : public AdapterTest {
protected:
    /// Lays down a program whose n-th call carries out the n-th script, and each call behind those the last. It notes
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
