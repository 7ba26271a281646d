#include <vector>

#include "tests/support/writer_test.h"

namespace kvl::test {
namespace {

enum class Form { kSwitch, kNumber };

struct Row {
    const char* name;
    int EthtoolResult::*field;
    Form form;
};

using Group = std::vector<Row>;

// The groups by their numbers, in the order of the report.
const std::vector<Group> kGroups = {
    {
        {"rx-checksumming", &EthtoolResult::rcs, Form::kSwitch},
        {"tx-checksumming", &EthtoolResult::tcs, Form::kSwitch},
        {"scatter-gather", &EthtoolResult::sg, Form::kSwitch},
        {"tcp-segmentation-offload", &EthtoolResult::tso, Form::kSwitch},
        {"udp-fragmentation-offload", &EthtoolResult::ufo, Form::kSwitch},
        {"generic-segmentation-offload", &EthtoolResult::gso, Form::kSwitch},
        {"generic-receive-offload", &EthtoolResult::gro, Form::kSwitch},
        {"large-receive-offload", &EthtoolResult::lro, Form::kSwitch},
        {"rx-vlan-offload", &EthtoolResult::rvo, Form::kSwitch},
        {"tx-vlan-offload", &EthtoolResult::tvo, Form::kSwitch},
        {"ntuple-filters", &EthtoolResult::nf, Form::kSwitch},
        {"receive-hashing", &EthtoolResult::rh, Form::kSwitch},
    },
    {
        {"Pause parameters Autonegotiate", &EthtoolResult::autonego, Form::kSwitch},
        {"Pause parameters RX", &EthtoolResult::pause_rx, Form::kSwitch},
        {"Pause parameters TX", &EthtoolResult::pause_tx, Form::kSwitch},
    },
    {
        {"Ring parameters Pre-set maximums RX", &EthtoolResult::pre_rx, Form::kNumber},
        {"Ring parameters Pre-set maximums RX Mini", &EthtoolResult::pre_mini, Form::kNumber},
        {"Ring parameters Pre-set maximums RX Jumbo", &EthtoolResult::pre_jumbo, Form::kNumber},
        {"Ring parameters Pre-set maximums TX", &EthtoolResult::pre_tx, Form::kNumber},
        {"Ring parameters Current hardware settings RX", &EthtoolResult::cur_rx, Form::kNumber},
        {"Ring parameters Current hardware settings RX Mini", &EthtoolResult::cur_mini, Form::kNumber},
        {"Ring parameters Current hardware settings RX Jumbo", &EthtoolResult::cur_jumbo, Form::kNumber},
        {"Ring parameters Current hardware settings TX", &EthtoolResult::cur_tx, Form::kNumber},
    },
    {
        {"Coalesce parameters Adaptive RX", &EthtoolResult::adaptive_rx, Form::kSwitch},
        {"Coalesce parameters Adaptive TX", &EthtoolResult::adaptive_tx, Form::kSwitch},
        {"Coalesce parameters stats-block-usercs", &EthtoolResult::sbu, Form::kNumber},  // spelled so
        {"Coalesce parameters sample-interval", &EthtoolResult::si, Form::kNumber},
        {"Coalesce parameters pkt-rate-low", &EthtoolResult::prl, Form::kNumber},
        {"Coalesce parameters pkt-rate-high", &EthtoolResult::prh, Form::kNumber},
        {"Coalesce parameters rx-usecs", &EthtoolResult::ru, Form::kNumber},
        {"Coalesce parameters rx-frames", &EthtoolResult::rf, Form::kNumber},
        {"Coalesce parameters rx-usecs-irq", &EthtoolResult::rui, Form::kNumber},
        {"Coalesce parameters rx-frames-irq", &EthtoolResult::rfi, Form::kNumber},
        {"Coalesce parameters tx-usecs", &EthtoolResult::tu, Form::kNumber},
        {"Coalesce parameters tx-frames", &EthtoolResult::tf, Form::kNumber},
        {"Coalesce parameters tx-usecs-irq", &EthtoolResult::tui, Form::kNumber},
        {"Coalesce parameters tx-frames-irq", &EthtoolResult::tfi, Form::kNumber},
        {"Coalesce parameters rx-usecs-low", &EthtoolResult::rul, Form::kNumber},
        {"Coalesce parameters rx-usecs-high", &EthtoolResult::ruh, Form::kNumber},
        {"Coalesce parameters rx-frame-low", &EthtoolResult::rfl, Form::kNumber},
        {"Coalesce parameters rx-frame-high", &EthtoolResult::rfh, Form::kNumber},
        {"Coalesce parameters tx-usecs-low", &EthtoolResult::tul, Form::kNumber},
        {"Coalesce parameters tx-usecs-high", &EthtoolResult::tuh, Form::kNumber},
        {"Coalesce parameters tx-frame-low", &EthtoolResult::tfl, Form::kNumber},
        {"Coalesce parameters tx-frame-high", &EthtoolResult::tfh, Form::kNumber},
    },
};

Group allRows() {
    Group all;
    for (const Group& group : kGroups) {
        all.insert(all.end(), group.begin(), group.end());
    }
    return all;
}

class DriverParameters : public WriterTest {
protected:
    void SetUp() override {
        WriterTest::SetUp();
        layInterface("eth0", "00:00:00:00:00:01", "UP MTU:9000 Metric:1");
        collect();
    }

    std::string block(const std::string& ifname = "eth0") {
        CKvlXmlNode node("node");
        writer->SetXmlDriverParameters(ifname, node);
        return xmlText(node);
    }

    /// The block of eth0's MTU and these elements.
    static std::string blockOf(const std::string& elements) {
        return document(element("node", value("mtu", "9000") + elements));
    }

    static std::string emptyElements(const Group& group) {
        std::string elements;
        for (const Row& row : group) {
            elements += value(row.name, "");
        }
        return elements;
    }
};

TEST_F(DriverParameters, WritesTheMtuAndThenTheSettingsInTheOrderOfTheReport) {
    EthtoolResult& record = ethtool("eth0");
    std::string elements;
    int number = 100;
    for (const Row& row : allRows()) {
        record.*row.field = ++number;
        elements += value(row.name, row.form == Form::kSwitch ? "on" : std::to_string(number));
    }
    EXPECT_EQ(block(), blockOf(elements));
}

TEST_F(DriverParameters, TracesOneLineWithoutTheName) {
    block();
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kDriverBlock)}));
    EXPECT_THAT(machine.commandsRun(), testing::IsEmpty());
}

TEST_F(DriverParameters, WritesEachSwitchFromItsOwnField) {
    const Group rows = allRows();
    for (const Row& set : rows) {
        if (set.form != Form::kSwitch) {
            continue;
        }
        ethtool("eth0") = EthtoolResult();
        ethtool("eth0").*set.field = 1;
        std::string elements;
        for (const Row& row : rows) {
            elements += value(row.name, row.field == set.field ? "on" : "");
        }
        EXPECT_EQ(block(), blockOf(elements));
    }
}

TEST_F(DriverParameters, WritesZeroAsOffOrAsANumber) {
    std::string elements;
    for (const Row& row : allRows()) {
        ethtool("eth0").*row.field = 0;
        elements += value(row.name, row.form == Form::kSwitch ? "off" : "0");
    }
    EXPECT_EQ(block(), blockOf(elements));
}

TEST_F(DriverParameters, WritesEmptyValuesForWhatWasNotFound) {
    EXPECT_EQ(block(), blockOf(emptyElements(allRows())));  // no ethtool command printed anything
}

TEST_F(DriverParameters, LeavesOutAGroupThatIsSwitchedOff) {
    for (std::size_t off = 0; off < kGroups.size(); ++off) {
        CNetworkParameter other(kModule);
        other.GetNetworkConfigurations();
        other.DisableEthtoolOption(static_cast<int>(off));
        std::string elements;
        for (std::size_t group = 0; group < kGroups.size(); ++group) {
            elements += group == off ? "" : emptyElements(kGroups[group]);
        }
        CKvlXmlNode node("node");
        CLanXmlWriter({}, &other, kModule).SetXmlDriverParameters("eth0", node);
        EXPECT_EQ(xmlText(node), blockOf(elements)) << off;
    }
}

TEST_F(DriverParameters, HoldsTheMtuAloneIfAllFourGroupsAreOff) {
    for (int option = 0; option <= 3; ++option) {
        collector->DisableEthtoolOption(option);
    }
    EXPECT_EQ(block(), blockOf(""));
}

TEST_F(DriverParameters, TakesNoNoticeOfTheOptionForVendorItems) {
    collector->DisableEthtoolOption(4);
    EXPECT_EQ(block(), blockOf(emptyElements(allRows())));
}

TEST_F(DriverParameters, LeavesOutAGroupThatIsSwitchedOffAfterItWasCollected) {
    ethtool("eth0").autonego = 1;
    collector->DisableEthtoolOption(1);
    EXPECT_EQ(valuesOf(block(), "Pause parameters Autonegotiate"), Lines());
}

TEST_F(DriverParameters, WritesTheMtuAsTextAlsoIfItIsEmpty) {
    ifconfig("eth0").MTU = "no number";
    EXPECT_EQ(valuesOf(block(), "mtu"), (Lines{"no number"}));
    ifconfig("eth0").MTU = "";
    EXPECT_EQ(valuesOf(block(), "mtu"), (Lines{""}));
}

TEST_F(DriverParameters, AppendsToWhatTheNodeHolds) {
    for (int option = 0; option <= 3; ++option) {
        collector->DisableEthtoolOption(option);
    }
    CKvlXmlNode node("node");
    node.addChildNode(CKvlXmlNode("earlier"));
    writer->SetXmlDriverParameters("eth0", node);
    EXPECT_EQ(xmlText(node), document(element("node", element("earlier") + value("mtu", "9000"))));
}

TEST_F(DriverParameters, WritesEmptyValuesForAnUnknownInterface) {
    EXPECT_EQ(block("eth7"), document(element("node", value("mtu", "") + emptyElements(allRows()))));
    EXPECT_EQ(TestHost::trace(), (Lines{enter(kDriverBlock), noIfconfigData("eth7"), noEthtoolData("eth7")}));
}

}  // namespace
}  // namespace kvl::test
