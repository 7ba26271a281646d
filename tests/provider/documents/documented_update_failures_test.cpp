// Each sentence and each exit code that docs/updates.md promises is compared with what kvl prints and returns. A row of
// the document needs a script here that brings it about, and a script needs a row.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <nlohmann/json.hpp>
#include <ostream>
#include <regex>
#include <stdexcept>

#include "tests/provider/documents/checked_commands.h"
#include "tests/provider/documents/document.h"

namespace {

using kvl::test::CheckedCommand;
using kvl::test::CheckScript;
using kvl::test::Document;
using kvl::test::DocumentTable;
using kvl::test::numbersIn;
using kvl::test::runChecks;
using kvl::test::scriptOf;
using kvl::test::SentencePatterns;
using kvl::test::sentencesIn;
using kvl::test::tableBelow;
using kvl::test::testName;
using kvl::test::wordsIn;
using nlohmann::json;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Patterns = std::vector<std::string>;
using Scripts = std::vector<CheckScript>;

// ---- The scripts ----

const Scripts kExitCodes = {
    {"0", "check update; check update"},
    {"1", "check firmware 02:00.0 OCe11102-none"},
    {"2", "check kvl update firmware; check kvl update tool"},
    {"3",
     "check firmware 02:00.1 OCe11102; tool_update tool >/dev/null 2>&1; check tool_update tool\n"
     "check kvl update tool --module /modules/tool --again",
     "n\n"},
    {"4", "fault no-success-text; check update"},
};

const Scripts kBeforeAnything = {
    {"DEVICE, a path or a name has the wrong form",
     "check firmware zz:0 OCe11102; check kvl update tool --module '/a b'; check firmware 02:00.0 OCe1110"},
    {"there is no terminal and no `--yes`", "check kvl update tool --module /modules/tool </dev/null"},
    {"another kvl works on this machine", "work_beside; check update; check tool_update tool; release"},
    {"no such module", "check firmware 02:00.0 OCe11102-none; check tool_update none"},
    {"no archive", "check firmware 02:00.0 OCe11102-no-archive; check tool_update tool-no-archive"},
    {"empty archive", "check firmware 02:00.0 OCe11102-empty-archive; check tool_update tool-empty-archive"},
    {"damaged archive", "check firmware 02:00.0 OCe11102-damaged-archive; check tool_update tool-damaged-archive"},
    {"damaged file in it, or a password",
     "check firmware 02:00.0 OCe11102-damaged; check firmware 02:00.0 OCe11102-locked", nullptr, true},
    {"a link in it, `..`, an absolute path",
     "for module in link above absolute; do check firmware 02:00.0 OCe11102-$module; done", nullptr, true},
    {"an archive whose name a shell takes apart", "check firmware 02:00.0 OCe11102-archive", nullptr, true},
    {"a file whose name a shell takes apart", "check firmware 02:00.0 OCe11102-file", nullptr, true},
    {"no firmware, or several files",
     "check firmware 02:00.0 OCe11102-no-firmware; check firmware 02:00.0 OCe11102-two-firmware"},
    {"no boot code, or several files",
     "check firmware 15:00.0 fcelx_8g1p-no-boot-code; check firmware 15:00.0 fcelx_8g2p-two-boot-code"},
    {"boot code and no `message.txt`", "check firmware 15:00.0 fcelx_8g2p-without-message"},
    {"a file of a tool module lacks for this machine", "check tool_update tool-without-install"},
    {"the machine is neither x86 nor x86_64", "replace /bin/uname 'echo sparc64'; check tool_update tool"},
    {"no such adapter", "check firmware 02:07.0 OCe11102"},
    {"no adapters", "rm -r $ports/*; check update"},
    {"no tool", "remove_tool; check update"},
    {"the tool can't list, or the disk is full for the list",
     "during listhbas 'exit 1'; check update; during listhbas 'exec >/dev/full 2>&1'; check update"},
    {"the list can't be understood", "sed -i 's/^PCI Bus Number.*/PCI Bus Number:/' $ports/01/list; check update"},
    {"the adapter has no address of its family's kind",
     "check firmware 15:00.0 OCe11102; check firmware 02:00.0 fcelx_16g"},
    {"an address that is none", "sed -i 's/^Permanent MAC .*/Permanent MAC  : 00;id/' $ports/01/list; check update"},
    {"`--scratch` isn't there", "check update --scratch /nowhere"},
    {"`--scratch` is no directory, or a link",
     "check update --scratch /etc/passwd; ln -s /root /root/link; check update --scratch /root/link"},
    {"`--scratch` is open to others", "check update --scratch /tmp"},
    {"the module lies where it would be deleted",
     "kvl adapters >/dev/null; mkdir $temp/tmp; cp -r /modules/tool $temp/tmp/inner; ln -s $temp/tmp/inner /root/link\n"
     "check kvl update tool --module /root/link --yes"},
    {"the plan can't be written to standard output", "check full update; check full tool_update tool"},
    {"no room", "check update --scratch /.proc/self/task"},
    {"a directory can't be written",
     "mkdir -m 500 /root/own; check update --scratch /root/own; kvl adapters >/dev/null; chmod 500 $work; check "
     "update\n"
     "chmod 500 $temp; check tool_update tool"},
    {"the work directory is open to others", "kvl adapters >/dev/null; chmod 777 $temp; check update"},
    {"the work directory can't be made", "mkdir -p -m 700 ${tree%/*} $tree; echo >$temp; check update"},
    {"`unzip` isn't there", "rm /bin/unzip; check update; check tool_update tool"},
    {"the marker can't be deleted for `--again`",
     "kvl adapters >/dev/null; mkdir $temp/temp_ocm_install.txt; check tool_update tool --again"},
};

const Scripts kWhileFirmware = {
    {"what an earlier update left can't be deleted, such as a link that leads nowhere",
     "kvl adapters >/dev/null; mkdir $work/unpacked; ln -s /nowhere $work/unpacked/link; check update"},
    {"SCRATCH can't be made", "kvl adapters >/dev/null; ln -s /nowhere $work/unpacked; check update"},
    {"the directory of the tool's output can't be made", "kvl adapters >/dev/null; echo >$work/firm; check update"},
    {"`unzip` fails, or the disk is full",
     "instead_of_unzip 'exit 9'; check update\n"
     "instead_of_unzip 'ulimit -f 0; trap \"\" XFSZ; exec /bin/busybox unzip \"$@\"'; check update"},
    {"`unzip` is killed", "instead_of_unzip 'kill -KILL $PPID'; check update"},
    {"a file is missing or not alone when all is unpacked",
     "after_unzip 'rm $4/*.ufi'; check update; after_unzip 'cp $4/firmware.ufi $4/other.ufi'; check update"},
    {"the adapter is gone from the list", "after_unzip \"echo >$list\"; check update"},
    {"its address is gone", "after_unzip \"sed -i '/^Permanent/d' $list\"; check update"},
    {"the list can't be understood any more",
     "after_unzip \"sed -i 's/^PCI Bus.*/PCI Bus Number:/' $list\"; check update"},
    {"the boot code fails",
     "fault incomplete-download; check firmware 15:00.0 fcelx_8g2p; cure\n"
     "fault no-success-text; check firmware 15:00.0 fcelx_8g2p"},
    {"the firmware fails", "fault incomplete-download; check update; cure; fault no-success-text; check update"},
    {"the firmware fails after the boot code was written",
     "during Download \"case \\$3 in *.all) exit 1 ;; esac\"; check firmware 15:00.0 fcelx_8g2p"},
    {"four runs without `Download Complete`",
     "fault incomplete-download 4; check firmware 02:00.0 OCe11102-without-message; cure\n"
     "fault no-success-text; check firmware 02:00.0 OCe11102-without-message"},
    {"SCRATCH can't be removed in the end", "during Download 'ln -s /nowhere ${3%/*}/link'; check update"},
};

const Scripts kWhileTool = {
    {"what an earlier update left can't be deleted",
     "kvl adapters >/dev/null; mkdir $temp/tmp; ln -s /nowhere $temp/tmp/link; check tool_update tool"},
    {"SCRATCH can't be made", "kvl adapters >/dev/null; ln -s /nowhere $temp/tmp; check tool_update tool"},
    {"`unzip` fails, or the disk is full",
     "instead_of_unzip 'exit 9'; check tool_update tool\n"
     "instead_of_unzip 'ulimit -f 0; trap \"\" XFSZ; exec /bin/busybox unzip \"$@\"'; check tool_update tool"},
    {"the machine's kind can't be told any more",
     "after_unzip 'rm /bin/uname; echo \"#!/bin/sh\" >/bin/uname; chmod 755 /bin/uname'; check tool_update tool"},
    {"`uninstall.sh` was not unpacked", "after_unzip 'rm $4/x64/uninstall.sh'; check tool_update tool"},
    {"`uninstall.sh` fails",
     "check tool_update tool-failing-uninstall; fault killed.uninstall; check tool_update tool"},
    {"`install.sh` was not unpacked", "after_unzip 'rm $4/x64/install.sh'; check tool_update tool"},
    {"`install.sh` fails", "check tool_update tool-failing-install"},
};

const Scripts kMarker = {
    {"the marker can't be made", "kvl adapters >/dev/null; mkdir -p $work/UpdateProceeding.txt; check update --quiet"},
    {"the marker can't be deleted in the end",
     "during Download \"rm $work/UpdateProceeding.txt; mkdir -p $work/UpdateProceeding.txt/x\"; check update --quiet"},
};

const Scripts kCauses = {
    {"`its output does not report success`", "fault incomplete-download; check update"},
    {"`its output did not come to its end in 150 s`", "fault never-ending; check update"},
    {"`its output can't be read`", "during Download \"rm $work/firm/*; exit 1\"; check update"},
    {"`the module's message.txt holds no text of success`, `... can't be read`",
     "fault incomplete-download 2; check firmware 02:00.0 OCe11102-only-end-text\n"
     "during Download \"rm $work/unpacked/message.txt\"; check update"},
    {"`it could not be started, or a signal ended it`", "during Download 'kill -KILL $PPID; exit 1'; check update"},
    {"`a file could not be opened, or a step of an update failed`",
     "during Download \"rm $work/firm/*; exit 1\"; check firmware 02:00.0 OCe11102-without-message"},
};

const Scripts kStates = {
    {"`nothing was changed: the adapter runs firmware A`, `nothing was changed: the management tool is A`",
     "instead_of_unzip 'exit 9'; check update; check tool_update tool"},
    {"`the adapter runs what it ran before: firmware A`, `the installed tool is still there: A`, `no tool is "
     "installed, as before`",
     "fault incomplete-download; check update; check tool_update tool-failing-uninstall\n"
     "remove_tool; check tool_update tool-failing-uninstall"},
    {"`the tool has written to the adapter: firmware A -> B; look at the adapter, and run the update again`",
     "fault no-success-text; check update"},
    {"`the tool was at work, and what the adapter runs now is not known: ...`",
     "during Download \"echo >$faults/failing.dump; exit 1\"; check update"},
    {"`the boot code is written, the firmware is not: ...`",
     "during Download \"case \\$3 in *.all) exit 1 ;; esac\"; check firmware 15:00.0 fcelx_8g2p"},
    {"`the adapter is updated: firmware A -> B; only SCRATCH is left over`",
     "during Download 'ln -s /nowhere ${3%/*}/link'; check update"},
    {"`the installed tool was to be removed, and the new one was not installed: A -> not installed; ...`",
     "fault killed.uninstall; check tool_update tool"},
    {"`the installed tool was removed, and the new one is not known to be in place: A -> not installed; ...`",
     "check tool_update tool-failing-install"},
};

const Scripts kToolCheck = {
    {"`silent install`", "both kvl tool-check"},
    {"`not a silent install: FILE has the line 'X' where 'Y' belongs`",
     "sed -i 's/^ManagementHost.*/ManagementHost:true/' /etc/emulexRMConfig; both kvl tool-check"},
    {"`not a silent install: FILE lacks 'X', 'Y'`",
     "sed -i '/^ClientOperationMode/d; /^Tcp/d' /etc/emulexDiscConfig; both kvl tool-check"},
    {"`not a silent install: the package elxocmjvm is installed, which a silent install leaves out`",
     "echo elxocmjvm-6.3.12.11.rpm >>/.machine/commands/bin/rpm/-qa; both kvl tool-check"},
    {"wrong usage", "both kvl tool-check --family none"},
    {"`FILE could not be opened` (error 11)",
     "rm /etc/emulexRMConfig; both kvl tool-check; rm /etc/emulexDiscConfig; both kvl tool-check"},
    {"`the installed packages could not be told` (error 0): TREE/temp/rpm_grep_result.txt can't be written",
     "kvl adapters >/dev/null; mkdir $temp/rpm_grep_result.txt; both kvl tool-check"},
    {"`'rpm -qa' failed, so whether the package elxocmjvm is installed can't be told` (error 0)",
     "rm /bin/rpm; both kvl tool-check"},
    {"`a temporary directory could not be made` (error 13)",
     "mkdir -p -m 700 ${tree%/*} $tree; echo >$temp; both kvl tool-check"},
    {"`the adapters' directory TREE/temp can be written by other users: ...`",
     "kvl adapters >/dev/null; chmod 777 $temp; both kvl tool-check"},
    {"`another kvl (process 1234) still works on this machine: ...`",
     "work_beside; both kvl tool-check --wait 0; release"},
};

const Scripts kPending = {
    {"0", "check kvl pending; check kvl pending --add nic --add fcoe; check kvl pending --take"},
    {"2", "check kvl pending --add none; check kvl pending --add nic --take"},
    {"3",
     "kvl pending --add nic >/dev/null; chmod 0 $temp/*NIC*; check kvl pending; chmod 600 $temp/*NIC*\n"
     "mkdir $temp/SequentialUpdateFile_FCoE.txt; check kvl pending --add fcoe; check kvl pending --take"},
};

const Scripts kBootFiles = {
    {"all of it is done, or a dry run shows that it could begin",
     "check boot_files --override lpfc --rebuild-initramfs; check boot_files --rebuild-initramfs --dry-run"},
    {"a command isn't there",
     "rm /sbin/depmod /sbin/dracut; check boot_files --override lpfc; check boot_files --rebuild-initramfs\n"
     "rm /bin/mv; check boot_files --rebuild-initramfs"},
    {"no room for a second image",
     "/bin/busybox truncate -s 1125899906842624 $image; check boot_files --rebuild-initramfs"},
    {"a directory can't be written, or isn't there",
     "chmod 500 /boot; check boot_files --rebuild-initramfs; rm -r $conf; check boot_files --override lpfc"},
    {"no image", "rm $image; check boot_files --rebuild-initramfs"},
    {"no kernel release", "rm /bin/uname; check boot_files --rebuild-initramfs"},
    {"an override file is no file, or can't be read and written",
     "mkdir $conf/elxlpfc.conf; check boot_files --override lpfc; rmdir $conf/elxlpfc.conf\n"
     ": >$conf/elxlpfc.conf; chmod 400 $conf/elxlpfc.conf; check boot_files --override lpfc"},
    {"an override file names the driver's overrides otherwise, be it in a comment or in a line that was cut off: "
     "nothing is added to such a file",
     "echo '# override lpfc * extra' >$conf/elxlpfc.conf; check boot_files --override lpfc\n"
     "printf '\\noverride lpfc * weak-updates/upd' >$conf/elxlpfc.conf; check boot_files --override lpfc"},
    {"`mv` failed", "replace /bin/mv 'exit 1'; check boot_files --rebuild-initramfs"},
    {"`dracut` failed, and the former image was moved back",
     "replace /sbin/dracut 'exit 1'; check boot_files --rebuild-initramfs --restore-on-failure"},
    {"an override file could not be opened, and no other got lines",
     "ln -s /nowhere/file $conf/elxlpfc.conf; check boot_files --override lpfc"},
    {"another kvl works on this machine", "work_beside; check boot_files --override lpfc; release"},
    {"wrong usage", "check boot_files; check boot_files --override none"},
    {"the rebuild was skipped; overrides that were asked for are done",
     "echo 'Some Linux release 5' >/etc/redhat-release; check boot_files --rebuild-initramfs\n"
     "check boot_files --rebuild-initramfs --override lpfc"},
    {"the lines didn't fit on the disk",
     "printf '# %0506d\\n' 0 >$conf/elxlpfc.conf; limited() { (trap '' XFSZ; ulimit -f 1; \"$@\"); }\n"
     "check limited boot_files --override lpfc --quiet"},
    {"`depmod -a` failed", "echo 1 >/.machine/commands/sbin/depmod/-a.status; check boot_files --override lpfc"},
    {"`dracut` failed or wrote no image",
     "replace /sbin/dracut 'exit 1'; check boot_files --rebuild-initramfs; mv -f $image.org $image\n"
     "replace /sbin/dracut 'exit 0'; check boot_files --rebuild-initramfs"},
    {"... and the former image could not be moved back",
     "replace /sbin/dracut 'mkdir $1; exit 1'; check boot_files --rebuild-initramfs --restore-on-failure"},
    {"any failure of the rebuild in a run that has added override lines",
     "replace /bin/mv 'exit 1'; check boot_files --override lpfc --rebuild-initramfs; cp /bin/busybox /bin/mv\n"
     "replace /sbin/dracut 'exit 1'; check boot_files --override be2net --rebuild-initramfs --restore-on-failure"},
    {"the plan can't be written to standard output", "check full boot_files --override lpfc"},
    {"a signal came before a rebuild, which is not begun then; 4 if override lines were added",
     "kvl boot-files --override lpfc >/dev/null 2>&1; replace /sbin/depmod '/tmp/signal_group TERM'\n"
     "check group_kvl boot-files --override lpfc --rebuild-initramfs"},
};

/// Code blocks of the document, named by their first line.
const Scripts kBlocks = {
    {"kvl: writing the firmware firmware.ufi failed: its output does not report success (error 11): it said last 'End "
     "of download.'; /opt/tarvenn/kvl/tmp/EMULEX/temp/CNA/firm/temp_hbacmd_Download.txt holds the rest",
     "fault incomplete-download; check update"},
    {"kvl: Interrupt: noted, and the update goes on to its end; an updater that is broken off can leave an adapter or "
     "a tool that doesn't work",
     "during Download '/tmp/signal_group INT'\n"
     "check group_kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --yes"},
    {"not a silent install: /etc/emulexRMConfig has the line 'ServerRemoteOperation:disabled' where "
     "'ServerRemoteOperation:enabled' belongs",
     "sed -i 's/^ServerRemoteOperation.*/ServerRemoteOperation:disabled/' /etc/emulexRMConfig; check kvl tool-check"},
};

// ---- The tables ----

/// Where a table's sentences stand in what is printed.
enum class Place {
    kNowhere,  ///< there are none: exit codes alone
    kAlone,    ///< the only line on standard error
    kCause,    ///< the first of two lines, after what has failed; the second reports the state
    kStep,     ///< the first of two lines; the second reports the state
    kState,    ///< the second of two lines; the first reports the step
    kAnswer,   ///< on standard output where it is an answer, else the only line on standard error
};

struct ComparedTable {
    const char* heading;
    const char* title;     ///< of its first column
    const char* rowTitle;  ///< of the column that names a row
    const char* sentenceTitle;
    const char* codeTitle;  ///< null if the exit code is given elsewhere
    Place place;
    const Scripts& scripts;
};

const std::array<ComparedTable, 10> kTables = {{
    {"Exit codes", "Code", "Code", "", "Code", Place::kNowhere, kExitCodes},
    {"Before anything is done", "What happened", "What happened", "Sentence", "Exit code", Place::kAlone,
     kBeforeAnything},
    {"While the firmware is updated", "What happened", "What happened", "Sentence", "Exit code", Place::kStep,
     kWhileFirmware},
    {"While the tool is updated", "What happened", "What happened", "Sentence", "Exit code", Place::kStep, kWhileTool},
    {"Marker of an update", "What happened", "What happened", "Sentence", "Exit code of an update that is done",
     Place::kAlone, kMarker},
    {"Causes and states", "Cause", "Cause", "Cause", nullptr, Place::kCause, kCauses},
    {"Causes and states", "State", "State", "State", "Exit code", Place::kState, kStates},
    {"Management tool check", "Code", "Sentence", "Sentence", "Code", Place::kAnswer, kToolCheck},
    {"Pending updates", "Code", "Code", "", "Code", Place::kNowhere, kPending},
    {"Boot files", "Code", "What happened", "Sentence", "Code", Place::kAlone, kBootFiles},
}};

const Document& document() {
    static const Document kDocument = kvl::test::readDocument("updates.md");
    return kDocument;
}

/// Throws std::out_of_range if it isn't compared.
const ComparedTable& comparedTable(const std::string& heading, const std::string& title) {
    for (const ComparedTable& compared : kTables) {
        if (compared.heading == heading && compared.title == title) {
            return compared;
        }
    }
    throw std::out_of_range(heading + ", " + title);
}

/// One row of one of the tables.
struct Row {
    const ComparedTable* compared;
    const DocumentTable* table;
    std::size_t number;

    const std::string& cell(const std::string& title) const { return table->cell(number, title); }
    const std::string& name() const { return cell(compared->rowTitle); }
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.compared->heading << ": " << row.name();
}

std::vector<Row> rowsOf(const ComparedTable& compared) {
    const DocumentTable& table = tableBelow(document(), compared.heading, compared.title);
    std::vector<Row> rows;
    for (std::size_t number = 0; number < table.rows.size(); ++number) {
        rows.push_back({&compared, &table, number});
    }
    return rows;
}

std::vector<Row> allRows() {
    std::vector<Row> rows;
    for (const ComparedTable& compared : kTables) {
        const std::vector<Row> more = rowsOf(compared);
        rows.insert(rows.end(), more.begin(), more.end());
    }
    return rows;
}

std::string nameOf(const testing::TestParamInfo<Row>& info) {
    return testName(std::string(info.param.compared->heading) + " " + info.param.name());
}

/// The texts that CAUSE stands for.
Patterns causes() {
    Patterns cells;
    for (const Row& row : rowsOf(comparedTable("Causes and states", "Cause"))) {
        cells.push_back(row.name());
    }
    return cells;
}

/// What a line looks like that prints a sentence of a row.
Patterns linesOf(const Row& row) {
    static const SentencePatterns kPatterns(causes());
    static const std::regex kError("\\(error ([0-9a-f]+)\\)");
    Patterns above;
    for (std::size_t number = 0; number < row.number; ++number) {
        const Patterns sentences = sentencesIn(row.table->cell(number, row.compared->sentenceTitle));
        above.insert(above.end(), sentences.begin(), sentences.end());
    }
    const std::string& cell = row.cell(row.compared->sentenceTitle);
    std::smatch error;
    std::string number = row.table->has("Number") ? row.cell("Number") : "";
    if (std::regex_search(cell, error, kError)) {
        number = error[1];
    }
    number = row.compared->place == Place::kCause ? "(?:10|11)" : number;
    Patterns lines;
    for (const std::string& sentence : kPatterns.of(cell, above)) {
        lines.push_back("kvl: " + std::string(row.compared->place == Place::kCause ? ".* failed: " : "") + sentence +
                        (number.empty() ? "" : " \\(error " + number + "\\): .*"));
    }
    return lines;
}

bool matches(const std::string& line, const std::string& pattern) {
    return std::regex_match(line, std::regex(pattern));
}

/// @return which of the patterns a line is like
std::set<std::string> matching(const std::string& line, const Patterns& patterns) {
    std::set<std::string> found;
    for (const std::string& pattern : patterns) {
        if (matches(line, pattern)) {
            found.insert(pattern);
        }
    }
    return found;
}

/// The lines of another table, of the rows with an exit code.
Patterns linesOf(const ComparedTable& compared, int exitCode) {
    Patterns lines;
    for (const Row& row : rowsOf(compared)) {
        if (numbersIn(row.cell(compared.codeTitle)).count(exitCode) == 1) {
            const Patterns more = linesOf(row);
            lines.insert(lines.end(), more.begin(), more.end());
        }
    }
    return lines;
}

/// The lines that report the step of an update that has failed.
Patterns linesOfSteps(int exitCode) {
    Patterns lines = linesOf(comparedTable("While the firmware is updated", "What happened"), exitCode);
    const Patterns more = linesOf(comparedTable("While the tool is updated", "What happened"), exitCode);
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

/// The lines that are no notes of a signal.
std::vector<std::string> withoutNotes(const std::vector<std::string>& told) {
    std::vector<std::string> lines;
    for (const std::string& line : told) {
        if (!matches(line, "kvl: \\w+: noted, and the update goes on to its end;.*")) {
            lines.push_back(line);
        }
    }
    return lines;
}

/// The line of a command that prints the row's sentence. What is printed beside it is checked.
std::string lineOf(const CheckedCommand& command, Place place) {
    const bool hasState = place == Place::kCause || place == Place::kStep || place == Place::kState;
    std::vector<std::string> lines = withoutNotes(command.told);
    if (place == Place::kAnswer && lines.empty()) {
        return "kvl: " + command.answer.substr(0, command.answer.find('\n'));
    }
    if (lines.size() != (hasState ? 2U : 1U)) {
        ADD_FAILURE() << command.command << " told " << testing::PrintToString(command.told);
        return "";
    }
    if (place == Place::kState) {
        EXPECT_THAT(matching(lines.front(), linesOfSteps(command.exitCode)), testing::Not(IsEmpty())) << lines.front();
        return lines.back();
    }
    if (hasState) {
        EXPECT_THAT(matching(lines.back(), linesOf(comparedTable("Causes and states", "State"), command.exitCode)),
                    testing::Not(IsEmpty()))
            << lines.back() << " and exit code " << command.exitCode;
    }
    return lines.front();
}

bool isDocument(const CheckedCommand& command) {
    return command.command.find("--format json") != std::string::npos;
}

/// The document that a command prints for programs, which the row describes.
void compareDocument(const CheckedCommand& command, const std::string& described) {
    const std::vector<std::string> words = wordsIn(described);
    if (words.empty() && described != "null") {
        EXPECT_EQ("", command.answer);
        return;
    }
    const json printed = json::parse(command.answer);
    if (words.empty()) {
        EXPECT_EQ(nullptr, printed["reason"]);
    } else if (words.front() == "error") {
        EXPECT_TRUE(printed.contains("error")) << printed;
    } else {
        EXPECT_EQ(words.front(), printed["reason"]);
        for (auto word = words.begin() + 1; word != words.end(); ++word) {
            EXPECT_FALSE(printed[*word].is_null() || printed[*word].empty()) << *word << " of " << printed;
        }
    }
}

class DocumentedUpdateFailure : public testing::TestWithParam<Row> {};

TEST_P(DocumentedUpdateFailure, IsWhatKvlPrintsAndReturns) {
    const Row& row = GetParam();
    const CheckScript* script = scriptOf(row.name(), row.compared->scripts);
    ASSERT_NE(nullptr, script) << "no script brings this row about";
    const std::vector<CheckedCommand> commands = runChecks(*script);
    ASSERT_THAT(commands, testing::Not(IsEmpty()));

    const bool hasSentences = *row.compared->sentenceTitle != '\0';
    const Patterns patterns = hasSentences ? linesOf(row) : Patterns();
    std::set<std::string> met;
    std::set<int> codes;
    bool isAnyTold = false;
    for (const CheckedCommand& command : commands) {
        codes.insert(command.exitCode);
        isAnyTold = isAnyTold || !command.told.empty();
        if (isDocument(command)) {
            compareDocument(command, row.cell("`reason` in JSON"));
        } else if (!patterns.empty()) {
            const std::string line = lineOf(command, row.compared->place);
            const std::set<std::string> found = matching(line, patterns);
            EXPECT_THAT(found, testing::Not(IsEmpty())) << command.command << " told: " << line;
            met.insert(found.begin(), found.end());
        }
    }
    EXPECT_EQ(std::set<std::string>(patterns.begin(), patterns.end()), met) << "sentences of the row";
    if (row.compared->codeTitle != nullptr) {
        EXPECT_EQ(numbersIn(row.cell(row.compared->codeTitle)), codes);
    }
    if (!hasSentences && row.cell("").find("standard error") != std::string::npos) {
        EXPECT_TRUE(isAnyTold) << "on standard error";
    }
}

INSTANTIATE_TEST_SUITE_P(Row, DocumentedUpdateFailure, testing::ValuesIn(allRows()), nameOf);

/// The code blocks that show a sentence.
std::vector<std::vector<std::string>> blocksOfSentences() {
    std::vector<std::vector<std::string>> blocks;
    for (const auto& block : document().blocks) {
        if (matches(block.front(), "(kvl: |not a silent install: ).*")) {
            blocks.push_back(block);
        }
    }
    return blocks;
}

TEST(DocumentedUpdateBlock, IsWhatKvlPrints) {
    const auto blocks = blocksOfSentences();
    EXPECT_THAT(blocks, SizeIs(kBlocks.size()));
    for (const auto& block : blocks) {
        const CheckScript* script = scriptOf(block.front(), kBlocks);
        ASSERT_NE(nullptr, script) << "no script brings this block about: " << block.front();
        const CheckedCommand command = runChecks(*script).at(0);
        EXPECT_THAT(block, AnyOf(command.told, ElementsAre(command.answer.substr(0, command.answer.find('\n')))));
    }
}

TEST(DocumentedUpdateFailures, HaveAScriptEachAndEachScriptHasARow) {
    for (const ComparedTable& compared : kTables) {
        std::vector<std::string> scripts;
        for (const CheckScript& script : compared.scripts) {
            scripts.emplace_back(script.row);
        }
        std::vector<std::string> rows;
        for (const Row& row : rowsOf(compared)) {
            rows.push_back(row.name());
        }
        EXPECT_THAT(scripts, testing::UnorderedElementsAreArray(rows)) << compared.heading << ", " << compared.title;
    }
}

TEST(DocumentedUpdateFailures, StandInNoOtherTable) {
    std::vector<std::string> compared;
    for (const ComparedTable& table : kTables) {
        compared.push_back(std::string(table.heading) + ", " + table.title);
    }
    for (const DocumentTable& table : document().tables) {
        for (const char* title : {"Code", "Exit code", "Sentence", "Number", "Cause", "State"}) {
            if (table.has(title)) {
                EXPECT_THAT(compared, Contains(table.heading + ", " + table.titles.front()));
            }
        }
    }
}

}  // namespace
