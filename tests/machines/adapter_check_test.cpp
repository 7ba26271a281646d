#include "tests/machines/adapter_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "machines/replay.h"
#include "tests/machines/outside.h"

namespace kvl::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

const std::string kFirstPort = "files/var/lib/hbacmd/ports/01/";

// A copy of a sound recording, to be broken by each test in its own way.
class BrokenAdapters : public testing::Test {
protected:
    BrokenAdapters() {
        fs::copy(machines::findRecording("adapters-mixed"), server(),
                 fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    }

    std::string server() const { return scratch_ / "server"; }

    void remove(const std::string& path) const { fs::remove_all(server() + "/" + path); }

    /// Replaces the first occurrence of a text that must be there.
    void change(const std::string& path, const std::string& before, const std::string& after) const {
        std::string text = readFile(server() + "/" + path);
        const std::size_t at = text.find(before);
        ASSERT_NE(at, std::string::npos) << path;
        std::ofstream(server() + "/" + path, std::ios::binary) << text.replace(at, before.size(), after);
    }

    std::vector<std::string> faults() const { return adapterFaultsOf(server()); }

    ScratchDirectory scratch_;
};

TEST_F(BrokenAdapters, AreSoundAsLongAsNothingIsBroken) {
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(BrokenAdapters, LackTheTool) {
    remove("files/usr/sbin");
    EXPECT_THAT(faults(), ElementsAre("the state of an adapter tool that is not installed"));
}

TEST_F(BrokenAdapters, LackTheState) {
    remove("files/var/lib/hbacmd");
    EXPECT_THAT(faults(), ElementsAre("the adapter tool has no state"));
}

TEST_F(BrokenAdapters, LackTheVersionOfTheTool) {
    remove("files/var/lib/hbacmd/version");
    EXPECT_THAT(faults(), ElementsAre("the adapter tool's version is not one line"));
}

TEST_F(BrokenAdapters, HaveALineThatReadersCanNotRead) {
    change(kFirstPort + "list", "Mfg            :", "Mfg            ");
    EXPECT_THAT(faults(), ElementsAre("list of port 01: Mfg             Emulex Corporation"));
}

TEST_F(BrokenAdapters, LackASerialNumberInTheList) {
    change(kFirstPort + "list", "Serial No.", "Serial    ");
    EXPECT_THAT(faults(), ElementsAre("list of port 01 lacks Serial No.", "dump of port 01 describes another port"));
}

TEST_F(BrokenAdapters, HaveTwoAddresses) {
    change(kFirstPort + "list", "Host Name      : server6", "Port WWN       : 10:00:00:00:c9:00:00:01");
    EXPECT_THAT(faults(), ElementsAre("list of port 01 does not have the one address of its type"));
}

TEST_F(BrokenAdapters, HaveALineBetweenBusAndFunction) {
    change(kFirstPort + "list", "PCI Function", "Mode           : Initiator\nPCI Function");
    EXPECT_THAT(faults(), ElementsAre("list of port 01: PCI Function does not follow PCI Bus Number"));
}

TEST_F(BrokenAdapters, HaveADumpOfAnotherPort) {
    change(kFirstPort + "dump", "00-90-fa-3c-10-20", "00-90-fa-3c-10-24");
    EXPECT_THAT(faults(), ElementsAre("dump of port 01 describes another port"));
}

TEST_F(BrokenAdapters, LackAVersionInADump) {
    change(kFirstPort + "dump", "FW Version", "Firmware Version");
    change(kFirstPort + "dump", "Boot Bios Version", "Boot Version");
    EXPECT_THAT(faults(), ElementsAre("dump of port 01 lacks Boot Bios Version", "dump of port 01 lacks FW Version"));
}

TEST_F(BrokenAdapters, HaveAPortInThePlaceOfAnother) {
    change("files/var/lib/hbacmd/ports/04/list", "PCI Function   : 3", "PCI Function   : 2");
    EXPECT_THAT(faults(), ElementsAre("port 04 has the address or the place of another"));
}

TEST_F(BrokenAdapters, HaveAPortThatLspciDoesNotKnow) {
    change("commands/sbin/lspci/-m", "15:00.1", "21:00.1");
    remove("commands/sbin/lspci/-mns 06:01.0");
    EXPECT_THAT(faults(), ElementsAre("no entry sbin/lspci/-mns 06:01.0", "lspci -m does not list 15:00.1 of port 15"));
}

TEST_F(BrokenAdapters, HaveADriverThatModinfoKnowsOtherwise) {
    change(kFirstPort + "dump", "4.6.62.0u", "4.6.62.1");
    EXPECT_THAT(faults(), ElementsAre("modinfo knows another be2net than the dump of port 01"));
}

TEST_F(BrokenAdapters, HaveANetworkPortWithoutAnInterface) {
    change("commands/sbin/ifconfig/-a", "00:90:FA:3C:10:20", "00:90:FA:3C:10:2F");
    change("commands/usr/sbin/ethtool/-i eth4", "06:00.1", "06:00.2");
    EXPECT_THAT(faults(), ElementsAre("no interface is port 01", "no interface is port 06"));
}

TEST_F(BrokenAdapters, HaveACatalogueThatCountsWrong) {
    change("files/opt/tarvenn/kvl/FcVCFac.ini", "SuportDeviceNum=2", "SuportDeviceNum=3");
    change("files/opt/tarvenn/kvl/CnaVCFac.ini", "DEV_0710", "0710");
    EXPECT_THAT(faults(), ElementsAre("CnaVCFac.ini does not hold the devices that it counts",
                                      "FcVCFac.ini does not hold the devices that it counts"));
}

}  // namespace
}  // namespace kvl::test
