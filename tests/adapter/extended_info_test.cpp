#include "tests/adapter/adapter_test.h"

namespace kvl::test {
namespace {

using Pairs = std::list<std::pair<std::string, std::string>>;

const std::string kConstructor = "CNetworkParameter::CNetworkParameter(std::string)";
const std::string kKernelList =
    "bool CNetworkParameter::GetInterfaceNameList(std::list<std::basic_string<char, std::char_traits<char>, "
    "std::allocator<char> >, std::allocator<std::basic_string<char, std::char_traits<char>, std::allocator<char> > > "
    ">&)";
const std::string kIfName = "std::string CNetworkParameter::GetIfName(std::string)";
const std::string kDevice = "05:00.1-VEN_10DF";
const std::string kMac = "00-00-c9-aa-bb-cc";

const Lines kLocationTrace = locationTrace("VEN_10DF", "PCINo=5, DevNo=0, FuncNo=1");
const std::string kStart = "1 CEmulexCommon::GetExtendedInfo() [START]";
const std::string kEnd = "1 CEmulexCommon::GetExtendedInfo() [END]";

class ExtendedInfo : public AdapterTest {
protected:
    void layPort(const std::string& type, const std::string& addressKey, const std::string& address) {
        Port port;
        port.type = type;
        port.addressKey = addressKey;
        port.address = address;
        port.function = "1";
        layList({port});
    }

    Pairs info() {
        Pairs pairs = {{"earlier", "earlier"}};
        EXPECT_TRUE(CEmulexCommon::GetExtendedInfo(kDevice, &pairs, module));
        return pairs;
    }
};

TEST_F(ExtendedInfo, OfANicPortIsAddressLocationAndInterface) {
    layPort("NIC", "Permanent MAC", kMac);
    libc().interfaces = {"lo", "eth0", "eth1", "eth2"};
    machine.command("/bin/uname -r", "2.6.32\n");
    machine.command("/usr/sbin/ethtool -i eth0", "bus-info: 0000:04:00.0\n");
    machine.command("/usr/sbin/ethtool -i eth1", "bus-info: 0000:05:00.1\n");
    EXPECT_EQ(info(), (Pairs{{"MAC Address", "00:00:C9:AA:BB:CC"}, {"Bus/Dev/Func", "5/0/1"}, {"I/F Name", "eth1"}}));
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace(), (Lines{kStart} + adapterTrace(1, kLocationTrace) + kLocationTrace +
                                  Lines{enter(kConstructor)} + ran("/bin/uname -r") +
                                  Lines{leave(kConstructor, " 2.6.32"), enter(kIfName), enter(kKernelList),
                                        leave(kKernelList), leave(kIfName), kEnd}));
    EXPECT_EQ(machine.commandsRun(),
              (Lines{"/bin/uname -r", "/usr/sbin/ethtool -i eth0", "/usr/sbin/ethtool -i eth1"}));
}

TEST_F(ExtendedInfo, AsksForTheInterfaceAsTheModuleCna) {
    useModule("fc");
    allowedModules = {"cna", "fc"};
    layPort("NIC", "Permanent MAC", kMac);
    libc().interfaces = {"eth0"};
    machine.command("/bin/uname -r", "2.6.32\n");
    machine.command("/usr/sbin/ethtool -i eth0", "bus-info: 0000:05:00.1\n");
    EXPECT_EQ(info().back().second, "eth0");
    for (const std::string& line : TestHost::moduleTrace()) {
        const bool isCollectors = line.find("CNetworkParameter") != std::string::npos;
        EXPECT_EQ(line.substr(0, line.find(' ')), isCollectors ? "cna" : "fc") << line;
    }
}

TEST_F(ExtendedInfo, HasAnEmptyInterfaceNameIfNoInterfaceIsAtTheLocation) {
    layPort("NIC", "Permanent MAC", kMac);
    libc().interfaces = {"eth0"};
    machine.command("/bin/uname -r", "2.6.32\n");
    machine.command("/usr/sbin/ethtool -i eth0", "bus-info: 0000:04:00.0\n");
    EXPECT_EQ(info(), (Pairs{{"MAC Address", "00:00:C9:AA:BB:CC"}, {"Bus/Dev/Func", "5/0/1"}, {"I/F Name", ""}}));
}

TEST_F(ExtendedInfo, LetsTheExceptionOfAMachineWithoutInterfacesPass) {
    layPort("NIC", "Permanent MAC", kMac);
    machine.command("/bin/uname -r", "2.6.32\n");
    std::string text;
    try {
        info();
    } catch (const std::logic_error& error) {
        text = error.what();
    }
    EXPECT_EQ(text, "basic_string::_S_construct NULL not valid");
    EXPECT_EQ(TestHost::trace().back(), enter(kKernelList));
}

TEST_F(ExtendedInfo, OfAnIscsiPortHasNoInterface) {
    layPort("iSCSI", "Permanent MAC", "0a-1b-2C-3d-4e-5f");
    EXPECT_EQ(info(), (Pairs{{"MAC Address", "0A:1B:2C:3D:4E:5F"}, {"Bus/Dev/Func", "5/0/1"}}));
    EXPECT_EQ(TestHost::trace(), (Lines{kStart} + adapterTrace(1, kLocationTrace) + kLocationTrace + Lines{kEnd}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(ExtendedInfo, OfAnFcOrFcoePortHasTheWwpnAsItStands) {
    for (const char* type : {"FC", "FCoE"}) {
        layPort(type, "Port WWN", "10-00:00:c9:aA-bb");
        EXPECT_EQ(info(), (Pairs{{"WWPN", "10-00:00:c9:aA-bb"}, {"Bus/Dev/Func", "5/0/1"}}));
    }
}

TEST_F(ExtendedInfo, OfAnyOtherPortBeginsWithTwoEmptyTexts) {
    for (const char* type : {"nic", "SAS", "ISCSI"}) {
        layPort(type, "Permanent MAC", kMac);
        EXPECT_EQ(info(), (Pairs{{"", ""}, {"Bus/Dev/Func", "5/0/1"}}));
    }
    machine.file(kListFile, "Port WWN: a\nPort Number: 0\nPCI Bus Number : 5\nPCI Function   : 1\n");
    EXPECT_EQ(info(), (Pairs{{"", ""}, {"Bus/Dev/Func", "5/0/1"}}));  // no type at all
}

TEST_F(ExtendedInfo, HasAnEmptyAddressIfTheRecordHasOneOfTheOtherKind) {
    layPort("iSCSI", "Port WWN", "a");
    EXPECT_EQ(info().front(), (std::pair<std::string, std::string>{"MAC Address", ""}));
    layPort("FC", "Permanent MAC", "a");
    EXPECT_EQ(info().front(), (std::pair<std::string, std::string>{"WWPN", ""}));
}

TEST_F(ExtendedInfo, OfANicPortWithoutAMacAddressHasAnEmptyOne) {
    layPort("NIC", "Port WWN", "a");
    libc().interfaces = {"eth0"};
    machine.command("/bin/uname -r", "2.6.32\n");
    machine.command("/usr/sbin/ethtool -i eth0", "bus-info: 0000:05:00.1\n");
    EXPECT_EQ(info(), (Pairs{{"MAC Address", ""}, {"Bus/Dev/Func", "5/0/1"}, {"I/F Name", "eth0"}}));
}

TEST_F(ExtendedInfo, LooksForNoInterfaceOfAPortThatIsNoNic) {
    libc().interfaces = {"eth0"};
    for (const char* type : {"FC", "FCoE", "iSCSI", "SAS", "nic", "NIC2"}) {
        SCOPED_TRACE(type);
        layPort(type, "Port WWN", "a");
        EXPECT_EQ(info().size(), 2U);
        EXPECT_EQ(takeTrace(), (Lines{kStart} + adapterTrace(1, kLocationTrace) + kLocationTrace + Lines{kEnd}));
    }
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(ExtendedInfo, LeavesAnEarlierCodeAlone) {
    layPort("FC", "Port WWN", "a");
    CEmulexCommon::SetLastError(17);
    info();
    EXPECT_EQ(takeError(), 17U);
}

TEST_F(ExtendedInfo, RaisesForAListWithAShortBusLineAndIsEmpty) {
    layPort("FC", "Port WWN", "a");
    std::string text = contentOf(kListFile);
    text.replace(text.find("PCI Bus Number : 5\n"), 19, "PCI Bus Number:\n");
    machine.file(kListFile, text);
    Pairs pairs = {{"earlier", "earlier"}};
    EXPECT_EQ(outOfRangeOf([&] { CEmulexCommon::GetExtendedInfo(kDevice, &pairs, module); }), "basic_string::substr");
    EXPECT_EQ(pairs, Pairs());
    EXPECT_EQ(takeError(), 0U);
    EXPECT_EQ(TestHost::trace().front(), kStart);
    EXPECT_EQ(TestHost::trace().back(), "1 [PCI Bus Number] is finded");
}

TEST_F(ExtendedInfo, HasTheLocationInDecimal) {
    Port port;
    port.bus = "31";
    port.function = "20";
    layList({port});
    Pairs pairs;
    EXPECT_TRUE(CEmulexCommon::GetExtendedInfo("1f:0a.0", &pairs, module));
    EXPECT_EQ(pairs.back(), (std::pair<std::string, std::string>{"Bus/Dev/Func", "31/10/0"}));
}

TEST_F(ExtendedInfo, FailsWithoutAResult) {
    layPort("FC", "Port WWN", "a");
    EXPECT_FALSE(CEmulexCommon::GetExtendedInfo(kDevice, nullptr, module));
    EXPECT_EQ(takeError(), 1U);
    EXPECT_EQ(TestHost::trace(), (Lines{kStart, kEnd}));
}

TEST_F(ExtendedInfo, FailsAsTheSearchForThePortDoesAndIsEmpty) {
    Pairs pairs = {{"earlier", "earlier"}};
    EXPECT_FALSE(CEmulexCommon::GetExtendedInfo(kDevice, &pairs, module));
    EXPECT_EQ(pairs, Pairs());
    EXPECT_EQ(takeError(), 17U);
    EXPECT_EQ(takeTrace(), (Lines{kStart, "1 CEmulexCommon::GetHBAInfo() [START]"} + missingListTrace() +
                            Lines{"1 CEmulexCommon::GetHBAInfo() [END]", kEnd}));
    machine.file(kListFile, "");
    EXPECT_FALSE(CEmulexCommon::GetExtendedInfo(kDevice, &pairs, module));
    EXPECT_EQ(takeError(), 15U);
    layPort("FC", "Port WWN", "a");
    EXPECT_FALSE(CEmulexCommon::GetExtendedInfo("rubbish", &pairs, module));
    EXPECT_EQ(takeError(), 13U);
    EXPECT_FALSE(CEmulexCommon::GetExtendedInfo("06:00.0", &pairs, module));
    EXPECT_EQ(takeError(), 14U);
    EXPECT_EQ(pairs, Pairs());
}

}  // namespace
}  // namespace kvl::test
