#ifndef KVL_TESTS_ADAPTER_MANAGEMENT_TOOL_UPDATE_H
#define KVL_TESTS_ADAPTER_MANAGEMENT_TOOL_UPDATE_H

#include <filesystem>
#include <functional>
#include <list>
#include <string>
#include <utility>

#include "tests/adapter/name_listed_twice.h"
#include "tests/adapter/update_test.h"

namespace kvl::test {

inline const std::string kTemp = kWorkRoot + "/temp";
inline const std::string kScratch = kTemp + "/tmp";
inline const std::string kDirectory = kScratch + "/x64";
inline const std::string kUninstall = kDirectory + "/uninstall.sh";
inline const std::string kInstall = kDirectory + "/install.sh";
inline const std::string kUninstallOutput = kTemp + "/temp_ocm_uninstall.txt";
inline const std::string kInstallOutput = kTemp + "/temp_ocm_install.txt";
inline const std::string kModuleFiles = "/tmp/module";
inline const Sleeps kAllPauses = {1000, 6000, 11000, 16000, 21000};

// The module that most tests have: its scripts print one line each, and nothing is waited for.
inline const std::string kMessages = "SuccessMessage=removed\nSuccessMessage=installed\n";
inline const Lines kUninstallLines = {"the tool is removed"};
inline const Lines kInstallLines = {"the tool is installed"};

/// The whole trace of an update whose scripts both pass.
inline const std::string kUpdated = R"(
    4 CEmulexCommon::OCMUpdate() [START]
    4 CUnzip_Utility::DeleteFolder [START]
    4 CUnzip_Utility::DeleteFolder [END]
    4 CUnzip_Utility::UpdateModuleUnzip [START]
    4 CUnzip_Utility::Unzip [START]
    1 CUnzip_Utility::Unzip ARG Check tsZipPath=/tmp/modules/tool.zip tsOutPath=/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp
    4 CUnzip_Utility::Unzip [END]
    4 CUnzip_Utility::UpdateModuleUnzip [END]
    4 CCommon_Information::GetArchitectureInfo [START]
    4 CCommon_Information::GetArchitectureInfo [END]
    1 Search uninstall.sh in [/opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64]
    1 Search uninstall.sh end
    1 filename = [uninstall.sh]
    1 Execute command [chmod 777 /opt/tarvenn/kvl/tmp/EMULEX/temp/tmp/x64/*]
    4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
    4 CEmulexCommon::CheckUpdateResult_() [START]
    1 log_mes_ifs. buf=[SuccessMessage=removed]
    1 successMessage[0]=[removed]
    1 log_mes_ifs. buf=[SuccessMessage=installed]
    1 successMessage[1]=[installed]
    1 no endMessage
    1 Result file check success msg [the tool is removed]
    1 Find SuccessMsg[] in [the tool is removed]
    1 Update Result Check OK
    4 CEmulexCommon::CheckUpdateResult_() [END]
    4 CEmulexCommon::EmulexUpdate() [END]
    4 CEmulexCommon::EmulexUpdate() Resultmode = 3 [START]
    4 CEmulexCommon::CheckUpdateResult_() [START]
    1 log_mes_ifs. buf=[SuccessMessage=removed]
    1 successMessage[0]=[removed]
    1 log_mes_ifs. buf=[SuccessMessage=installed]
    1 successMessage[1]=[installed]
    1 no endMessage
    1 Result file check success msg [the tool is installed]
    1 Find SuccessMsg[] in [the tool is installed]
    1 Update Result Check OK
    4 CEmulexCommon::CheckUpdateResult_() [END]
    4 CEmulexCommon::EmulexUpdate() [END]
    4 CEmulexCommon::OCMUpdate() [END]
)";

/// A 64-bit machine and a module with scripts for it. `unzip` puts the files of /tmp/module where it is asked to.
class ManagementToolUpdate : public UpdateTest {
protected:
    void SetUp() override {
        UpdateTest::SetUp();
        machine.command("/bin/uname -m", "x86_64\n");
        machine.program("/bin/chmod", logging("exec /bin/busybox chmod \"$@\""));
        machine.program("/bin/unzip", logging("exec cp -r /tmp/module/. \"$4\""));
        laySources("x64");
        CEmulexCommon::SetLastError(kEarlierError);
    }

    void TearDown() override {
        nameListedTwice().clear();
        EXPECT_EQ(libc().sleeps, 0);
        EXPECT_THAT(machine.commandsMissing(), testing::IsEmpty());
        EXPECT_FALSE(std::filesystem::exists(kTemp + "/ocm_update_result.txt"));
        UpdateTest::TearDown();
    }

    /// A program that notes its call.
    static std::string logging(const std::string& script) {
        return "#!/bin/sh\nprintf '%s\\n' \"$0${*:+ $*}\" >>/.machine/log\n" + script + "\n";
    }

    /// One of the module's scripts, which prints these lines. It can't be run as it is packed.
    void layScript(const std::string& path, const Lines& lines, const std::string& more = "") {
        machine.file(kModuleFiles + "/" + path, logging(printing(lines) + "\n" + more));
    }

    void layMessages(const std::string& text) { machine.file(kModuleFiles + "/x64/message.txt", text); }

    /// The files for one kind of machine.
    void laySources(const std::string& directory) {
        layScript(directory + "/uninstall.sh", kUninstallLines);
        layScript(directory + "/install.sh", kInstallLines);
        machine.file(kModuleFiles + "/" + directory + "/message.txt", kMessages);
    }

    bool update() { return update("/tmp/modules", {"readme.txt", "tool.zip", "other.zip"}); }

    bool update(const std::string& moduleDir, std::list<std::string> files) {
        return quietly([&] { return CEmulexCommon::OCMUpdate("unused", moduleDir, &files, false, module); });
    }

    /// An update from a module of the build.
    bool updateFromArchive(const std::string& name) {
        machine.dropCommand("/bin/unzip");
        return update(kModules + "/" + name, {"module.zip"});
    }

    /// What runs up to the scripts.
    static Lines unpackCommands() { return {"/bin/unzip -o /tmp/modules/tool.zip -d " + kScratch, "/bin/uname -m"}; }

    /// The call that makes the files of a directory runnable, named in order.
    static std::string chmodCall(const Lines& names, const std::string& directory = kDirectory) {
        std::string call = "/bin/chmod 777";
        for (const std::string& name : names) {
            call += " " + directory + "/" + name;
        }
        return call;
    }

    static Lines readyCommands(const Lines& names = {"install.sh", "message.txt", "uninstall.sh"}) {
        return unpackCommands() + Lines{chmodCall(names)};
    }

    static Lines updateCommands() { return readyCommands() + Lines{kUninstall, kInstall + " -q"}; }

    /// What runs for a module of the build. Its scripts note no call.
    static Lines moduleCommands(const Lines& names, const std::string& directory = kDirectory) {
        return {"/bin/uname -m", chmodCall(names, directory)};
    }

    /// A failure that only the debug trace reports.
    void expectFailure(unsigned long code, const Lines& trace) {
        EXPECT_FALSE(update());
        EXPECT_EQ(TestHost::trace(), trace);
        EXPECT_EQ(CEmulexCommon::GetLastError(), code);
        EXPECT_THAT(TestHost::operatorMessages(), testing::IsEmpty());
    }

    /// A failure that is reported to the operator, under three module names.
    void expectReportedFailure(unsigned long code, const std::string& codeText, const std::function<bool()>& call,
                               const Lines& trace) {
        const std::pair<std::string, std::string> rows[] = {
            {"cna", "MSGID_EMULEX_0004_F"}, {"fc", "MSGID_EMULEX_FC_0004_F"}, {"CNA", "MSGID_EMULEX_FC_0004_F"}};
        for (const auto& [name, message] : rows) {
            SCOPED_TRACE(name);
            useModule(name);
            forget();
            EXPECT_FALSE(call());
            EXPECT_EQ(TestHost::trace(), trace);
            EXPECT_EQ(TestHost::operatorMessages(), (Lines{name + " " + message + " ocm " + codeText}));
            EXPECT_EQ(takeError(), code);
        }
        EXPECT_FALSE(std::filesystem::exists(kUninstallOutput));
        EXPECT_FALSE(std::filesystem::exists(kInstallOutput));
    }

    /// What is left in the directory of the work files, except the directories of the families.
    static Lines filesLeft() {
        Lines names;
        for (const std::string& name : namesIn(kTemp)) {
            if (name != "CNA" && name != "FC") {
                names.push_back(name);
            }
        }
        return names;
    }

    static constexpr unsigned long kEarlierError = 14;
};

}  // namespace kvl::test

#endif
