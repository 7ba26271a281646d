#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/provider/kvl_program.h"

namespace {

namespace fs = std::filesystem;
using kvl::test::copyRecording;
using kvl::test::Outcome;
using kvl::test::readFile;
using kvl::test::runKvl;
using kvl::test::ScratchDirectory;

std::string replaced(std::string text, const std::string& old, const std::string& next) {
    for (auto found = text.find(old); found != std::string::npos; found = text.find(old, found + next.size())) {
        text.replace(found, old.size(), next);
    }
    return text;
}

/// Where "eth" and a digit name a port.
std::string renamed(std::string text, const std::string& stem) {
    for (const char* digit : {"0", "1", "2", "3"}) {
        text = replaced(text, std::string("eth") + digit, stem + digit);
    }
    return text;
}

/// The server with four ports, two bonds and two VLANs, whose ports have other names.
class NamedPorts : public testing::TestWithParam<std::string> {
protected:
    NamedPorts() {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(recording)) {
            if (entry.is_regular_file()) {
                files.push_back(entry.path().string());
            }
        }
        for (const std::string& file : files) {
            const std::string name = file.substr(scratch.path().size() + 1);
            const std::string content = readFile(file);
            fs::remove(file);
            scratch.write(renamed(name, GetParam()), renamed(content, GetParam()));
        }
    }

    const ScratchDirectory scratch;
    const std::string recording = copyRecording("four-port", scratch);
    std::vector<std::string> files;
};

TEST_P(NamedPorts, AreReportedWithTheirBondsAndVlans) {
    const Outcome plain = runKvl({"replay", "four-port", "--", "report"});
    const Outcome named = runKvl({"replay", recording, "--", "report"});
    EXPECT_EQ(0, named.status);
    EXPECT_EQ("", named.errors);
    EXPECT_EQ(renamed(plain.output, GetParam()), named.output);
}

INSTANTIATE_TEST_SUITE_P(ByTheirSlot, NamedPorts,
                         testing::Values("em", "p2p", "eno", "ens19", "enp3s0f", "peth", "slot"));

}  // namespace
