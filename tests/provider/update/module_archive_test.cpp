#include "provider/update/module_archive.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <ostream>

#include "provider/library/adapter_failure.h"
#include "tests/machines/outside.h"
#include "tests/provider/update/made_archive.h"

namespace {

namespace fs = std::filesystem;
using kvl::provider::AdapterFailure;
using kvl::provider::holdsEntry;
using kvl::provider::lookIntoModule;
using kvl::provider::ProviderError;
using kvl::provider::topEntries;
using kvl::provider::UpdateModule;
using kvl::test::makeArchive;
using kvl::test::readFile;
using kvl::test::ScratchDirectory;
using testing::ElementsAre;

TEST(ModuleArchive, IsTheFirstFileThatIsNamedLikeOne) {
    const ScratchDirectory scratch;
    for (const char* name : {"z.zip", "a.txt", "b.zip.part", "0"}) {
        makeArchive(scratch / name, {{name, "x"}});
    }
    const UpdateModule module = lookIntoModule(scratch.path());
    EXPECT_EQ(scratch.path(), module.directory);
    EXPECT_EQ("b.zip.part", module.archive);
    EXPECT_THAT(module.files, ElementsAre("0", "a.txt", "b.zip.part", "z.zip"));
    EXPECT_THAT(module.entries, ElementsAre("b.zip.part"));
}

TEST(ModuleArchive, TellsItsEntriesAndTheRoomThatTheyTake) {
    const ScratchDirectory scratch;
    makeArchive(
        scratch / "m.zip",
        {{"x64/install.sh", "12345"}, {"a.ufi", std::string(100'000, 'a')}, {"x64/", "", 040755}, {"./b//c.ufi", "6"}});
    const UpdateModule module = lookIntoModule(scratch.path());
    EXPECT_THAT(module.entries, ElementsAre("x64/install.sh", "a.ufi", "x64/", "b/c.ufi"));
    EXPECT_EQ(100'006U, module.unpackedSize);
    EXPECT_TRUE(holdsEntry(module, "x64/install.sh"));
    EXPECT_FALSE(holdsEntry(module, "install.sh"));
    EXPECT_FALSE(holdsEntry(module, "x64/install.s"));
}

TEST(ModuleArchive, FindsByPatternWhatStandsAtItsTop) {
    UpdateModule module;
    module.entries = {"a.ufi", "x64/b.ufi", ".c.ufi", "d.ufi.txt", "e.UFI", "f.ufi", "g.ufi/", ".ufi"};
    EXPECT_THAT(topEntries(module, "*.ufi"), ElementsAre("a.ufi", ".c.ufi", "f.ufi", ".ufi"));
    EXPECT_THAT(topEntries(module, "*.prg"), ElementsAre());
}

struct BadModule {
    std::function<void(const ScratchDirectory&)> make;
    std::string sentence;  ///< with "DIR" for the directory
};

void PrintTo(const BadModule& row, std::ostream* stream) {
    *stream << row.sentence;
}

class BadArchive : public testing::TestWithParam<BadModule> {};

TEST_P(BadArchive, IsRefusedWithItsNumberAndASentence) {
    const ScratchDirectory scratch;
    GetParam().make(scratch);
    std::string sentence = GetParam().sentence;
    for (auto place = sentence.find("DIR"); place != std::string::npos; place = sentence.find("DIR")) {
        sentence.replace(place, 3, scratch.path());
    }
    try {
        lookIntoModule(scratch.path());
        FAIL() << "accepted";
    } catch (const AdapterFailure& failure) {
        EXPECT_EQ("1a", failure.failure().number);
        EXPECT_EQ("the update module could not be unpacked: " + sentence, failure.failure().meaning);
        EXPECT_EQ("get the module again from its maker", failure.failure().next);
    }
}

/// A module with one entry.
std::function<void(const ScratchDirectory&)> with(const kvl::test::MadeEntry& entry) {
    return [entry](const ScratchDirectory& scratch) { makeArchive(scratch / "m.zip", {{"good", "x"}, entry}); };
}

std::function<void(const ScratchDirectory&)> withFile(const std::string& name, const std::string& content) {
    return [=](const ScratchDirectory& scratch) { scratch.write(name, content); };
}

/// Makes an archive and changes it.
std::function<void(const ScratchDirectory&)> changed(const std::function<void(std::string&)>& change) {
    return [change](const ScratchDirectory& scratch) {
        makeArchive(scratch / "m.zip", {{"a.ufi", "some content that is stored as it is", 0100644}});
        std::string bytes = readFile(scratch / "m.zip");
        change(bytes);
        scratch.write("m.zip", bytes);
    };
}

constexpr const char* kLeadsOut = " in the archive is a link, or leads out of it";

INSTANTIATE_TEST_SUITE_P(
    Modules, BadArchive,
    testing::Values(
        BadModule{[](const ScratchDirectory&) {}, "DIR holds no .zip file"},
        BadModule{withFile("readme.txt", "no archive"), "DIR holds no .zip file"},
        BadModule{withFile("module.ZIP", ""), "DIR holds no .zip file"},
        BadModule{withFile("a b.zip", ""),
                  "the name of the archive 'a b.zip' holds characters that a shell takes differently"},
        BadModule{withFile("a\";id;\".zip", ""),
                  "the name of the archive 'a\";id;\".zip' holds characters that a shell takes differently"},
        BadModule{withFile("$(id).zip", ""),
                  "the name of the archive '$(id).zip' holds characters that a shell takes differently"},
        BadModule{withFile("a\n.zip", ""),
                  "the name of the archive 'a .zip' holds characters that a shell takes differently"},
        BadModule{withFile("m.zip", "no archive"), "DIR/m.zip: Not a zip archive"},
        BadModule{[](const ScratchDirectory& scratch) { fs::create_directory(scratch / "m.zip"); },
                  "DIR/m.zip: Operation not supported"},
        BadModule{[](const ScratchDirectory& scratch) { fs::create_symlink("nowhere", scratch / "m.zip"); },
                  "DIR/m.zip: No such file"},
        BadModule{withFile("m.zip", std::string("PK\5\6") + std::string(18, '\0')), "m.zip is empty"},
        BadModule{changed([](std::string& bytes) { bytes.resize(bytes.size() / 2); }), "DIR/m.zip: Not a zip archive"},
        BadModule{changed([](std::string& bytes) { bytes.at(bytes.find("content")) ^= 1; }),
                  "a.ufi in the archive is damaged, or locked with a password"},
        BadModule{with({"secret.ufi", "content", 0100644, true}),
                  "secret.ufi in the archive is damaged, or locked with a password"},
        BadModule{with({"link.ufi", "/etc/passwd", 0120777}), std::string("link.ufi") + kLeadsOut},
        BadModule{with({"../a.ufi", "x"}), std::string("../a.ufi") + kLeadsOut},
        BadModule{with({"x64/../../a.ufi", "x"}), std::string("x64/../../a.ufi") + kLeadsOut},
        BadModule{with({"x64/..", "x"}), std::string("x64/..") + kLeadsOut},
        BadModule{with({"/etc/passwd", "x"}), std::string("/etc/passwd") + kLeadsOut},
        BadModule{with({"a\n/..", "x"}), std::string("a /..") + kLeadsOut}));

TEST(ModuleArchive, NeedsADirectory) {
    const ScratchDirectory scratch;
    scratch.write("file", "");
    for (const std::string name : {"none", "file"}) {
        try {
            lookIntoModule(scratch / name);
            FAIL() << "accepted";
        } catch (const ProviderError& error) {
            const std::string why = name == "none" ? "No such file or directory" : "Not a directory";
            EXPECT_EQ("the module's directory " + scratch / name + " can't be read: " + why, error.what());
        }
    }
}

TEST(ModuleArchive, IsOnlyRead) {
    const ScratchDirectory scratch;
    makeArchive(scratch / "m.zip", {{"a.ufi", "x"}});
    const auto before = kvl::test::readTree(scratch.path());
    lookIntoModule(scratch.path());
    EXPECT_EQ(before, kvl::test::readTree(scratch.path()));
}

}  // namespace
