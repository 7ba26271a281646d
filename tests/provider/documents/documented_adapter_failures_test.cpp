// The errors and exit codes that docs/adapters.md promises are compared with what kvl gives to programs, prints and
// returns. A row of the document needs a script here that brings it about, and a script needs a row.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <nlohmann/json.hpp>
#include <ostream>
#include <regex>
#include <sstream>

#include "adapter/error_codes.h"
#include "tests/provider/documents/checked_commands.h"
#include "tests/provider/documents/document.h"

namespace {

using kvl::test::CheckedCommand;
using kvl::test::CheckScript;
using kvl::test::Document;
using kvl::test::DocumentTable;
using kvl::test::runChecks;
using kvl::test::scriptOf;
using kvl::test::SentencePatterns;
using kvl::test::tableBelow;
using kvl::test::testName;
using kvl::test::wordsIn;
using nlohmann::json;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using Scripts = std::vector<CheckScript>;
using Texts = std::set<std::string>;

// ---- The scripts ----

/// By the names of the errors. The commands print documents.
const Scripts kErrors = {
    {"tool-failed",
     "during listhbas 'exit 1'; check kvl adapters --format json\n"
     "during listhbas 'kill -KILL $$'; check kvl adapters --format json; rm $tool; ln -s /.machine/hbacmd $tool\n"
     "fault silent; check kvl adapters --format json"},
    {"unexpected-form",
     "sed -i 's/^\\(Port WWN.*\\): .*/\\1: 10:00;id/' $ports/14/list; check kvl adapters --versions --format json\n"
     "sed -i 's/^PCI Bus Number.*/PCI Bus Number:/' $ports/01/list; check kvl adapter-info 15:00.0 --format json"},
    {"no-dump-directory", "fault no-dump-directory; check kvl version 15:00.0 --kind boot --format json"},
    {"no-dump-file",
     "check kvl version 15:00.0 --kind boot --family cna --format json\n"
     "fault other-port-first 9; check kvl version 15:00.0 --kind boot --format json; cure\n"
     "echo '/tmp/a b' >${ports%/*}/dump_directory; check kvl version 15:00.0 --kind boot --format json"},
    {"dump-not-cached",
     "kvl adapters >/dev/null; mkdir -m 700 $tree/cache/FC/CacheDump_15:00.0.txt\n"
     "check kvl version 15:00.0 --kind boot --refresh --format json"},
    {"no-version", "sed -i /Boot/d $ports/14/dump; check kvl version 15:00.0 --kind boot --format json"},
    {"no-tool", "remove_tool; check kvl adapters --format json; check kvl components --format json"},
    {"bad-device-id", "check kvl version zz:00.0 --kind boot --format json"},
    {"no-such-adapter", "check kvl version 15:07.0 --kind boot --format json"},
    {"no-adapters", "sed -i d $ports/*/list; check kvl version 15:00.0 --kind boot --format json"},
    {"file-not-opened",
     "during dump 'rm -f /opt/tarvenn/kvl/tmp/EMULEX/temp/Listhbas.txt'\n"
     "check kvl adapters --versions --family fc --format json"},
    {"no-cache-directory",
     "mkdir -p -m 700 ${tree%/*} $tree; echo >$tree/cache; check kvl adapters --format json\n"
     "rm $tree/cache; chmod 500 $tree; check kvl adapters --format json"},
    {"no-temporary-directory", "mkdir -p -m 700 ${tree%/*} $tree; echo >$temp; check kvl adapters --format json"},
    {"bad-version",
     "check kvl compare 1.2 1.2.3.4 --kind tool --family cna --format json\n"
     "check kvl compare 2.72a2 2.72 --kind firmware --family fc --format json"},
    {"tool-not-executable",
     "remove_tool; echo >$tool; check kvl adapters --format json; check kvl components --format json"},
    {"incomplete-list", "sed -i /Serial/d $ports/15/list; check kvl adapters --format json"},
    {"no-location",
     "sed -i 's/\\(PCI Function   : \\)1/\\1x/' $ports/15/list; check kvl adapters --versions --format json"},
    {"no-interface", "check kvl adapter-info 02:00.0 --format json"},
    {"interface-not-asked", "check beside_odd_interfaces adapter-info 02:00.0 --format json"},
    {"no-catalogue", "cd /opt/tarvenn/kvl; rm CnaVCFac.ini; check kvl supported --format json"},
    {"unreadable-catalogue",
     "cd /opt/tarvenn/kvl; rm *.ini; mkdir CnaVCFac.ini; check kvl supported --family cna --format json\n"
     "echo >FcVCFac.ini; chmod 0 FcVCFac.ini; check kvl supported --family fc --format json"},
    {"bad-catalogue",
     "cd /opt/tarvenn/kvl; echo '[SuportDevice]' >CnaVCFac.ini; check kvl supported --format json\n"
     "printf '[SuportDevice]\\nSuportDeviceNum=10001\\n' >FcVCFac.ini; check kvl supported --family fc --format json"},
};

/// By the exit codes. Each command that a row names is checked.
const Scripts kExitCodes = {
    {"0",
     "check kvl adapters; check kvl adapter-info 06:01.0; check kvl version 15:00.0 --kind boot\n"
     "check kvl compare 1.2.3.4 1.2.3.4 --kind tool --family cna; check kvl supported; check kvl slot 0b:00.1\n"
     "check kvl driver-check lpfc 8.3.7.18; check kvl boot-image; check kvl components"},
    {"1",
     "check kvl adapter-info 02:00.0; rm /opt/tarvenn/kvl/FcVCFac.ini; check kvl supported\n"
     "sed -i /Serial/d $ports/15/list; check kvl adapters"},
    {"2",
     "check kvl adapters --family none; check kvl adapter-info zz; check kvl version 15:00.0 --kind none\n"
     "check kvl compare 1.2.3.4; check kvl supported more; check kvl slot zz; check kvl driver-check lpfc\n"
     "check kvl boot-image more; check kvl components more"},
    {"3",
     "check full kvl compare 1.2.3.4 1.2.3.4 --kind tool --family cna; check full kvl slot 0b:00.1\n"
     "check full kvl components; rm /opt/tarvenn/kvl/*.ini; check kvl supported\n"
     "rm /boot/grub/grub.conf; check kvl boot-image\n"
     "remove_tool; check kvl adapters; check kvl adapter-info 06:01.0; check kvl version 15:00.0 --kind boot\n"
     "check full kvl driver-check lpfc 8.3.7.18"},
    {"10", "check kvl compare 1.2.3.4 1.2.3.3 --kind tool --family cna"},
    {"11", "check kvl compare 1.2.3.4 1.2.3.5 --kind tool --family cna"},
    {"12",
     "check kvl compare 1.2.3.4 1.2 --kind tool --family cna; check kvl compare 1.2 1.2.3.4 --kind tool --family cna"},
    {"13", "check kvl driver-check lpfc 8.3.7.19; check kvl driver-check none 8.3.7.18"},
    {"14", "sed -i 's/initramfs-/initramfs-1/' /boot/grub/grub.conf; check kvl driver-check lpfc 8.3.7.19"},
    {"15",
     "sed -i 's/initrd \\/*/&boot\\//' /boot/grub/grub.conf; check kvl boot-image\n"
     "sed -i 's/initramfs-/initramfs-1/' /boot/grub/grub.conf; check kvl boot-image"},
    {"16", "remove_tool; check kvl components; echo >$tool; check kvl components"},
};

/// Code blocks of the document, named by their first line.
const Scripts kBlocks = {
    {"kvl: hbacmd is not installed (error b): install the OneCommand Manager, which brings "
     "/usr/sbin/ocmanager/hbacmd",
     "remove_tool; check kvl adapters"},
};

// ---- The tables ----

const Document& document() {
    static const Document kDocument = kvl::test::readDocument("adapters.md");
    return kDocument;
}

Texts namesOf(const Scripts& scripts) {
    Texts names;
    for (const CheckScript& script : scripts) {
        names.insert(script.row);
    }
    return names;
}

/// One row of a table.
struct Row {
    const DocumentTable* table;
    std::size_t number;
    std::string name;

    const std::string& cell(const std::string& title) const { return table->cell(number, title); }
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

/// @param title  of the column that names the rows, in code marks or without
std::vector<Row> rowsOf(const std::string& heading, const std::string& first, const std::string& title) {
    const DocumentTable& table = tableBelow(document(), heading, first);
    std::vector<Row> rows;
    for (std::size_t number = 0; number < table.rows.size(); ++number) {
        const std::string& cell = table.cell(number, title);
        const std::vector<std::string> words = wordsIn(cell);
        rows.push_back({&table, number, words.empty() ? cell : words.front()});
    }
    return rows;
}

std::vector<Row> errorRows() {
    return rowsOf("Errors", "Number", "Name");
}

std::vector<Row> exitCodeRows() {
    return rowsOf("Exit codes", "Code", "Code");
}

std::string nameOf(const testing::TestParamInfo<Row>& info) {
    return testName(info.param.name);
}

// ---- Errors ----

/// The entries of an error's name in a document, wherever they stand.
std::vector<json> entriesOf(const std::string& name, const json& printed) {
    std::vector<json> entries;
    if (printed.is_object() && printed.value("name", json()) == name) {
        entries.push_back(printed);
    } else if (printed.is_structured()) {
        for (const json& part : printed) {
            const std::vector<json> more = entriesOf(name, part);
            entries.insert(entries.end(), more.begin(), more.end());
        }
    }
    return entries;
}

/// Compares a text with the documented ones. @return those that it is like
Texts compare(const std::string& text, const std::vector<std::string>& patterns) {
    Texts like;
    for (const std::string& pattern : patterns) {
        if (std::regex_match(text, std::regex(pattern))) {
            like.insert(pattern);
        }
    }
    EXPECT_THAT(like, Not(IsEmpty())) << text;
    return like;
}

/// What the library says of an error that kvl finds before it: the number, the name, and the meaning as kvl would give
/// it.
json entryOfLibrary(const std::string& number, const std::string& next) {
    const kvl::AdapterErrorRow* row = kvl::findAdapterError(std::stoul(number, nullptr, 16));
    if (row == nullptr) {
        return nullptr;
    }
    std::string meaning = row->meaning;
    meaning.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(meaning.front())));
    return {{"number", number}, {"name", row->name}, {"meaning", meaning}, {"next", next}};
}

class DocumentedAdapterError : public testing::TestWithParam<Row> {};

TEST_P(DocumentedAdapterError, IsWhatKvlGivesToPrograms) {
    const Row& row = GetParam();
    const CheckScript* script = scriptOf(row.name, kErrors);
    ASSERT_NE(nullptr, script) << "no script brings this row about";
    std::vector<json> entries;
    for (const CheckedCommand& command : runChecks(*script)) {
        SCOPED_TRACE(command.command);
        constexpr int kWrongUsage = 2;
        const std::vector<json> more =
            command.exitCode == kWrongUsage
                ? std::vector<json>{entryOfLibrary(row.cell("Number"),
                                                   kvl::test::sentencesIn(row.cell("What to do")).at(0))}
                : entriesOf(row.name, json::parse(command.answer));
        EXPECT_THAT(more, Not(IsEmpty())) << command.answer;
        entries.insert(entries.end(), more.begin(), more.end());
    }
    const SentencePatterns patterns;
    const std::vector<std::string> meanings = patterns.of(row.cell("Meaning"));
    const std::vector<std::string> advice = patterns.of(row.cell("What to do"));
    Texts told;
    for (const json& entry : entries) {
        EXPECT_EQ(row.name, entry["name"]);
        EXPECT_EQ(row.cell("Number"), entry["number"].is_null() ? "" : entry["number"].get<std::string>());
        told.merge(compare(entry["meaning"], meanings));
        told.merge(compare(entry["next"], advice));
    }
    Texts documented(meanings.begin(), meanings.end());
    documented.insert(advice.begin(), advice.end());
    EXPECT_EQ(documented, told) << "sentences of the row";
}

INSTANTIATE_TEST_SUITE_P(Row, DocumentedAdapterError, testing::ValuesIn(errorRows()), nameOf);

// ---- Exit codes ----

/// The commands that the document describes, and in "all" of them.
Texts describedCommands() {
    Texts commands;
    for (const Row& row : rowsOf("Commands", "Command", "Command")) {
        std::istringstream words(row.cell("Command"));
        std::string command;
        words >> command >> command;
        commands.insert(command.substr(0, command.find('`')));
    }
    return commands;
}

Texts commandsOf(const std::string& cell) {
    const std::vector<std::string> words = wordsIn(cell);
    return cell == "all" ? describedCommands() : Texts(words.begin(), words.end());
}

class DocumentedAdapterExitCode : public testing::TestWithParam<Row> {};

TEST_P(DocumentedAdapterExitCode, IsWhatItsCommandsReturn) {
    const Row& row = GetParam();
    const CheckScript* script = scriptOf(row.name, kExitCodes);
    ASSERT_NE(nullptr, script) << "no script brings this row about";
    Texts checked;
    for (const CheckedCommand& command : runChecks(*script)) {
        EXPECT_EQ(row.name, std::to_string(command.exitCode)) << command.command;
        std::istringstream words(command.command.substr(command.command.find("kvl ")));
        std::string name;
        words >> name >> name;
        checked.insert(name);
        if (row.cell("").find("standard error") != std::string::npos) {
            EXPECT_THAT(command.told, Not(IsEmpty())) << command.command;
        }
    }
    EXPECT_EQ(commandsOf(row.cell("Of")), checked);
}

INSTANTIATE_TEST_SUITE_P(Row, DocumentedAdapterExitCode, testing::ValuesIn(exitCodeRows()), nameOf);

// ---- All of them ----

TEST(DocumentedAdapterBlock, IsWhatKvlPrints) {
    std::vector<std::vector<std::string>> blocks;
    for (const auto& block : document().blocks) {
        if (block.front().rfind("kvl: ", 0) == 0) {
            blocks.push_back(block);
        }
    }
    EXPECT_THAT(blocks, testing::SizeIs(kBlocks.size()));
    for (const auto& block : blocks) {
        const CheckScript* script = scriptOf(block.front(), kBlocks);
        ASSERT_NE(nullptr, script) << "no script brings this block about: " << block.front();
        EXPECT_EQ(block, runChecks(*script).at(0).told);
    }
}

Texts namesOf(const std::vector<Row>& rows) {
    Texts names;
    for (const Row& row : rows) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name << " is there twice";
    }
    return names;
}

TEST(DocumentedAdapterFailures, HaveAScriptEachAndEachScriptHasARow) {
    EXPECT_EQ(namesOf(errorRows()), namesOf(kErrors));
    EXPECT_EQ(namesOf(exitCodeRows()), namesOf(kExitCodes));
}

TEST(DocumentedAdapterFailures, StandInNoOtherTable) {
    for (const DocumentTable& table : document().tables) {
        for (const char* title : {"Code", "Exit code", "Sentence", "Number"}) {
            if (table.has(title)) {
                EXPECT_THAT((Texts{"Exit codes", "Errors"}), Contains(table.heading));
            }
        }
    }
}

}  // namespace
