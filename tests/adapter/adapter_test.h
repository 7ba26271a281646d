#ifndef KVL_TESTS_ADAPTER_ADAPTER_TEST_H
#define KVL_TESTS_ADAPTER_ADAPTER_TEST_H

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <utility>

#include "adapter/CEmulexCommon.h"
#include "tests/support/collector_test.h"
#include "tests/support/private_machine_test.h"

namespace kvl::test {

inline const std::string kInstallPath = "/opt/tarvenn/kvl";
inline const std::string kWorkRoot = kInstallPath + "/tmp/EMULEX";
inline const std::string kTool = "/usr/sbin/ocmanager/hbacmd";
inline const std::string kListFile = kWorkRoot + "/temp/Listhbas.txt";
inline const std::string kDirectoryFile = kWorkRoot + "/temp/DumpDirectory.txt";
inline const std::string kListing = kWorkRoot + "/temp/fsresult";
inline const std::string kDumps = "/var/dumps";

using Record = std::map<std::string, std::string>;

/// One port as `hbacmd listhbas` prints it.
struct Port {
    std::string addressKey = "Port WWN";
    std::string address = "10:00:00:00:c9:aa:bb:cc";
    std::string number = "0";
    std::string bus = "5";
    std::string function = "0";
    std::string type = "FC";
    std::string serial = "VM1";

    std::string block() const {
        return addressKey + "       : " + address + "\nPort Number    : " + number + "\nPCI Bus Number : " + bus +
               "\nPCI Function   : " + function + "\nPort Type      : " + type + "\nSerial No.     : " + serial +
               "\n\n";
    }

    Record record() const {
        return {{addressKey, address},      {"Port Number", number}, {"PCI Bus Number", bus},
                {"PCI Function", function}, {"Port Type", type},     {"Serial No.", serial}};
    }
};

// ---- What the operations trace ----

inline const std::string kExecSignature = "static int CEmulexCommon::ExecCommand_(std::string, std::string)";

inline Lines execTrace(const std::string& line, int result = 0) {
    return {"1 CEmulexCommon::ExecCommand_() [START]", "1 " + kExecSignature + " ExecCommand_(" + line + ")",
            "4 [LEAVE] " + kExecSignature + ", rc=" + std::to_string(result), "1 CEmulexCommon::ExecCommand_() [END]"};
}

inline Lines failedExecTrace(const std::string& line) {
    return {"1 CEmulexCommon::ExecCommand_() [START]", "1 " + kExecSignature + " ExecCommand_(" + line + ")",
            "2 " + kExecSignature + " [" + line + "] command failed! (errno)", "1 CEmulexCommon::ExecCommand_() [END]"};
}

inline std::string keyTrace(const std::string& file, const std::string& keys, const std::string& separator = ":") {
    return "1 GetKeyValueFromFile(" + file + "," + keys + "," + separator + ")";
}

inline std::string openErrorTrace(const std::string& file, int error = ENOENT) {
    return "2 File Open Error. file(" + file + ") errcode(" + std::to_string(error) + ")";
}

/// The list of a file with so many whole blocks.
inline Lines listTrace(int ports) {
    Lines lines = {"1 CEmulexCommon::GetHBAInfoList() [START]"};
    for (int port = 0; port < ports; ++port) {
        for (const char* keys :
             {"Port WWN|Permanent MAC", "Port Number", "PCI Bus Number", "PCI Function", "Port Type", "Serial No."}) {
            lines.push_back(keyTrace(kListFile, keys));
        }
    }
    return lines + Lines{keyTrace(kListFile, "Port WWN|Permanent MAC"), "1 CEmulexCommon::GetHBAInfoList() [END]"};
}

/// A list file that can't be opened.
inline Lines missingListTrace(int error = ENOENT) {
    return {"1 CEmulexCommon::GetHBAInfoList() [START]", keyTrace(kListFile, "Port WWN|Permanent MAC"),
            openErrorTrace(kListFile, error), "1 CEmulexCommon::GetKeyValueFromFile_() [END]",
            "1 CEmulexCommon::GetHBAInfoList() [END]"};
}

/// @param numbers  as in "PCINo=5, DevNo=0, FuncNo=1"
inline Lines locationTrace(const std::string& rest, const std::string& numbers) {
    return {"4 CCommon_Information::GetPCIInfo [START]",
            "1 CCommon_Information::GetPCIInfo DeviceID=" + rest + ", " + numbers,
            "4 CCommon_Information::GetPCIInfo [END]"};
}

/// A port that is found among so many.
inline Lines adapterTrace(int ports, const Lines& location) {
    return Lines{"1 CEmulexCommon::GetHBAInfo() [START]"} + listTrace(ports) + location +
           Lines(static_cast<std::size_t>(ports), "1 [PCI Bus Number] is finded") +
           Lines{"1 CEmulexCommon::GetHBAInfo() [END]"};
}

/// A file of a listing with its time, as `LatestFile` looks at it.
inline Lines listedTrace(const std::string& path, long time, const std::string& timeText) {
    return {"1 CEmulexCommon::LatestFile() file=" + path, "1 CEmulexCommon::LatestFile() filename=" + path,
            "1 st_mtime=" + std::to_string(time), "1 Last Modify [" + timeText + "\n]"};
}

inline Lines latestStartTrace(const std::string& directory, const std::string& pattern) {
    return {"1 CEmulexCommon::LatestFile() [START]",
            "1 CEmulexCommon::LatestFile() [" + directory + "][" + pattern + "][" + kWorkRoot + "/temp][fsresult]",
            "1 CEmulexCommon::LatestFile() exec[/bin/ls " + directory + "/" + pattern + " > " + kListing + " 2>&1]"};
}

inline std::string latestListingTrace() {
    return "1 CEmulexCommon::LatestFile() cmd=" + kListing;
}

inline std::string latestEndTrace(const std::string& result) {
    return "1 CEmulexCommon::LatestFile() [END] latest filename=" + result;
}

/// @param outcome  as in "[...] is finded" without the text
inline Lines checkTrace(const std::string& file, const std::string& text, const std::string& outcome) {
    return {"4 CEmulexCommon::CheckDumpFileKeyWord_() [START]", "1 CheckDumpFileKeyWord_(" + file + "," + text + ")",
            "1 [" + text + "] " + outcome, "4 CEmulexCommon::CheckDumpFileKeyWord_() [END]"};
}

inline const Lines kToolFoundTrace = {"4 CEmulexCommon::GetOCMManagerInstallPath [START]",
                                      "1 CEmulexCommon::GetOCMManagerInstallPath() [END]"};

// ---- The fixture ----

/// A test of `CEmulexCommon` on a machine with the working tree, without an earlier error, called as the module "cna".
class AdapterTest : public PrivateMachineTest {
protected:
    void SetUp() override {
        PrivateMachineTest::SetUp();
        useModule("cna");
        EXPECT_TRUE(CEmulexCommon::CreateLocalDirectory());
        CEmulexCommon::SetLastError(0);
    }

    /// Has the test call with another module name, and lets only that one trace.
    void useModule(const std::string& name) {
        module = name;
        allowedModules = {name};
    }

    /// @return the last error, which is 0 from then on
    static unsigned long takeError() {
        const unsigned long code = CEmulexCommon::GetLastError();
        CEmulexCommon::SetLastError(0);
        return code;
    }

    void layList(const std::list<Port>& ports) {
        std::string text;
        for (const Port& port : ports) {
            text += port.block();
        }
        machine.file(kListFile, text);
    }

    static void setModified(const std::string& path, std::int64_t seconds) {
        const struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
        EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
    }

    /// Takes the trace and forgets it.
    Lines takeTrace() {
        Lines lines = TestHost::trace();
        TestHost::forget();
        return lines;
    }

    std::string module;
};

}  // namespace kvl::test

#endif
