#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <typeinfo>

#include "lan_report/CLanXmlWriter.h"
#include "tests/support/collector_test.h"

// Every command of the collection and every file that it reads, spoilt in every way: the outcome is the promised one,
// it comes without an endless wait, and no leak, descriptor or child is left over (the fixture and the sanitizers
// look for those).

namespace kvl::test {
namespace {

/// Ends the test program if a case hangs. Far more than a slow machine takes for one report.
class HangGuard {
public:
    HangGuard() { alarm(kSeconds); }
    ~HangGuard() { alarm(0); }
    HangGuard(const HangGuard&) = delete;
    HangGuard& operator=(const HangGuard&) = delete;

private:
    static constexpr unsigned int kSeconds = 120;
};

/// What a whole collection and report came to.
struct Outcome {
    std::string exception = "(none)";
    std::string xml;
};

class BadInput : public CollectorTest {
protected:
    void SetUp() override {
        PrivateMachineTest::SetUp();
        machine.load(std::string(KVL_SOURCE_DIRECTORY) + "/machines/four-port");
    }

    Outcome report() {
        forget();
        const HangGuard guard;
        Outcome outcome;
        try {
            CNetworkParameter parameter(kModule);
            parameter.GetNetworkConfigurations();
            parameter.GetEtherConfigurations();
            parameter.GetBondingConfifurations();
            parameter.GetRoutingConfigurations();
            std::string gateway;
            parameter.GetIpv6Metric("eth3", gateway);
            std::string name = "eth0";
            macset_t macs;
            parameter.GetCommonMac(name, macs);
            CLanXmlWriter writer({"8086", "14e4"}, &parameter, kModule);
            writer.SetCommonInfo();
            writer.SetPhysicalInfo();
            writer.SetTeamInfo();
            writer.SetVirtualInfo();
            outcome.xml = xmlText(writer.GetNicNode());
        } catch (const std::exception& error) {
            const bool outOfRange = typeid(error) == typeid(std::out_of_range);
            outcome.exception = std::string(outOfRange ? "std::out_of_range " : "another exception ") + error.what();
        }
        return outcome;
    }
};

/// A way in which a command spoils its output, whatever its arguments.
struct Fault {
    const char* name;
    std::string output;
    kvl::machines::Ending ending;
    bool givesNothing = false;  ///< The library takes it as it takes a missing program.
};

std::vector<Fault> faults(const std::string& command) {
    std::string manyLines;
    for (int line = 0; line < 100000; ++line) {
        manyLines += command == "/sbin/route" ? "default g 0.0.0.0 UG 0 0 0 eth0\n" : "line\n";
    }
    std::string zeros;
    for (int count = 0; count < 4096; ++count) {
        zeros += std::string("\0\xff\xff", 3);
        zeros += count % 7 == 0 ? "\n" : "";
    }
    return {
        {"failing", "text\n", {1}, true},
        {"failing with 255", "", {255}, true},
        {"killed without output", "", kvl::machines::Ending::bySignal(SIGKILL), true},
        {"killed with output", "x y\n", kvl::machines::Ending::bySignal(SIGTERM)},
        {"empty", "", {}, true},
        {"one line feed", "\n", {}},
        {"without a line feed", "text", {}},
        {"1 MiB without a line feed", std::string(1 << 20, 'x'), {}},
        {"bytes 0 and 255", zeros, {}},
        {"100,000 lines", manyLines, {}},
    };
}

class BadCommand : public BadInput, public testing::WithParamInterface<const char*> {};

TEST_P(BadCommand, LeavesAWholeReportOfTheRest) {
    machine.dropCommand(GetParam());
    const Outcome missing = report();
    EXPECT_EQ(missing.exception, "(none)");
    EXPECT_THAT(missing.xml, testing::HasSubstr("</NIC>"));
    for (const Fault& fault : faults(GetParam())) {
        SCOPED_TRACE(std::string(GetParam()) + " " + fault.name);
        machine.anyCommand(GetParam(), fault.output, fault.ending);
        const Outcome outcome = report();
        EXPECT_EQ(outcome.exception, "(none)");
        EXPECT_THAT(outcome.xml, testing::HasSubstr("</NIC>"));
        if (fault.givesNothing) {
            EXPECT_EQ(outcome.xml, missing.xml);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EachCommand, BadCommand,
                         testing::Values("/bin/uname", "/sbin/ifconfig", "/usr/sbin/ethtool", "/bin/ls", "/bin/cat",
                                         "/sbin/route", "/bin/netstat", "/sbin/lspci"),
                         [](const auto& parameter) {
                             const std::string path = parameter.param;
                             return path.substr(path.rfind('/') + 1);
                         });

// ---- Output cut in the middle of a line ----

class TruncatedCommand : public BadInput {
protected:
    /// Cuts a command's output at every position and reports each time whether it raised.
    template <typename Collect>
    void cutEverywhere(const std::string& commandLine, const std::string& output, Collect collect) {
        for (std::string::size_type length = 0; length <= output.size(); ++length) {
            SCOPED_TRACE(output.substr(0, length));
            machine.command(commandLine, output.substr(0, length));
            const HangGuard guard;
            CNetworkParameter parameter(kModule);
            EXPECT_EQ(outOfRangeOf([&] { collect(parameter); }), "(none)");
        }
    }
};

TEST_F(TruncatedCommand, NeverRaisesForIfconfigSinceALineThatMeetsTheEndIsLost) {
    cutEverywhere(
        "/sbin/ifconfig -a",
        "eth0 Link encap:Ethernet  HWaddr 00:00:00:00:00:01\n"
        "     inet addr:10.0.0.1  Bcast:10.0.0.255\n     inet6 addr: fe80::1/64 Scope:Link\n     UP MTU:1500\n\n",
        [](CNetworkParameter& parameter) { parameter.GetNetworkConfigurations(); });
}

TEST_F(TruncatedCommand, NeverRaisesForEthtool) {
    const struct {
        const char* option;
        const char* output;
        bool (CNetworkParameter::*collect)(std::string, EthtoolResult&);
    } groups[] = {
        {"-i", "driver: igb\nversion: 1\nfirmware-version: 2\nbus-info: 0000:03:00.0\n",
         &CNetworkParameter::ExecEthtool_I},
        {"-k", "rx-checksumming: on\nreceive-hashing: off\n", &CNetworkParameter::ExecEthtool_K},
        {"-a", "Autonegotiate: on\nRX: on\nTX: on\n", &CNetworkParameter::ExecEthtool_A},
        {"-g", "Pre-set maximums:\nRX: 1\nCurrent hardware settings:\nRX: 1\n", &CNetworkParameter::ExecEthtool_G},
        {"-c", "Adaptive RX: on  TX: on\nrx-usecs: 1\n", &CNetworkParameter::ExecEthtool_C},
    };
    for (const auto& group : groups) {
        cutEverywhere(std::string("/usr/sbin/ethtool ") + group.option + " eth9", group.output,
                      [&](CNetworkParameter& parameter) {
                          EthtoolResult result;
                          (parameter.*group.collect)("eth9", result);
                      });
    }
}

TEST_F(TruncatedCommand, NeverRaisesForABond) {
    machine.reset();
    machine.file("/proc/net/bonding/bond9", "");
    cutEverywhere("/bin/cat /proc/net/bonding/bond9",
                  "Bonding Mode: a\nPrimary Slave: b\nMII Status: up\nUp Delay (ms): 0\nARP IP target/s (x): 1, 2\n"
                  "Slave Interface: eth0\nPermanent HW addr: aa\n",
                  [](CNetworkParameter& parameter) { parameter.GetBondingConfifurations(); });
}

TEST_F(TruncatedCommand, NeverRaisesForRoutesVlansResolverAndLspci) {
    cutEverywhere("/sbin/route", "Kernel\ndefault g 0.0.0.0 UG 0 0 0 eth0\n",
                  [](CNetworkParameter& parameter) { parameter.GetRoutingConfigurations(); });
    cutEverywhere("/bin/netstat -A inet6 -nr", "::/0 fe80::1 UG 1024 5 0 eth0\n",
                  [](CNetworkParameter& parameter) { parameter.GetRouteDataV6("eth0"); });
    cutEverywhere("/sbin/lspci -mns 03:00.0", "03:00.0 \"0200\" \"8086\" \"10c9\" -r01 \"103c\" \"323f\"\n",
                  [](CNetworkParameter& parameter) {
                      std::string ids;
                      parameter.GetFourIds("03:00.0", ids);
                  });
    cutEverywhere("/bin/cat /proc/net/vlan/config", "h\nh\neth0.1 | 1 | eth0\n", [](CNetworkParameter& parameter) {
        vlanconfmap_t vlans;
        parameter.GetVLANData(vlans);
    });
    cutEverywhere("/bin/cat /etc/resolv.conf", "nameserver 1\ndomain a\nsearch b c\n",
                  [](CNetworkParameter& parameter) {
                      ResolvConf conf;
                      parameter.GetResolvConf(conf);
                  });
}

// ---- Output that raises ----

class RaisingOutput : public BadInput {
protected:
    /// Expects the promised exception out of the collection, with the output that raised it left in its file.
    void expectRaised(const std::string& command, const std::string& output) {
        SCOPED_TRACE(output);
        const Outcome outcome = report();
        EXPECT_EQ(outcome.exception, "std::out_of_range basic_string::substr");
        EXPECT_EQ(outcome.xml, "");
        EXPECT_EQ(namesIn(kResultDirectory), (Lines{command}));
        EXPECT_EQ(contentOf(resultFile(command)), output);
        EXPECT_EQ(libc().sleeps, 0);
    }
};

TEST_F(RaisingOutput, IsAnIpv4AddressOfIfconfigWithoutAColon) {
    for (const char* words : {"inet 10.0.0.1  Mask:255.0.0.0", "inet", "UP inet 10.0.0.1"}) {
        const std::string output = std::string("eth0 Link encap:Ethernet\n     ") + words + "\n\n";
        machine.command("/sbin/ifconfig -a", output);
        expectRaised("ifconfig", output);
    }
}

TEST_F(RaisingOutput, IsAKeyOfEthtoolWithoutAColon) {
    const struct {
        const char* option;
        const char* output;
    } rows[] = {
        {"-i", "driver igb\n"},       {"-i", "driver: igb\nbus-info\n"},        {"-k", "rx-checksumming on\n"},
        {"-a", "Autonegotiate on\n"}, {"-g", "Pre-set maximums:\nRX Mini 0\n"}, {"-c", "Adaptive RX off\n"},
        {"-c", "Adaptive RX: off\n"},  // the second value of the line is missing
    };
    for (const auto& row : rows) {
        const std::string commandLine = std::string("/usr/sbin/ethtool ") + row.option + " eth2";
        machine.load(std::string(KVL_SOURCE_DIRECTORY) + "/machines/four-port");
        machine.command(commandLine, row.output);
        expectRaised("ethtool", row.output);
        EXPECT_EQ(machine.commandsRun().back(), commandLine);
    }
}

TEST_F(RaisingOutput, IsAKeyOfABondWithoutAColon) {
    for (const char* key : {"MII Polling Interval (ms) 100", "Up Delay", "Down Delay (ms) 0", "ARP Polling Interval",
                            "ARP IP target/s (n.n.n.n form)"}) {
        const std::string content = std::string("Bonding Mode: x\n") + key + "\n";
        machine.file("/proc/net/bonding/bond0", content);
        expectRaised("cat", content);
    }
}

TEST_F(RaisingOutput, IsOverwrittenByTheNextCollection) {
    machine.file("/proc/net/bonding/bond0", "Up Delay\n");
    expectRaised("cat", "Up Delay\n");
    machine.file("/proc/net/bonding/bond0", "Up Delay (ms): 0\n");
    EXPECT_EQ(report().exception, "(none)");
    EXPECT_THAT(namesIn(kResultDirectory), testing::IsEmpty());
}

// ---- Spoilt files ----

class BadFile : public BadInput, public testing::WithParamInterface<const char*> {
protected:
    std::string path() const { return GetParam(); }
};

TEST_P(BadFile, LeavesAWholeReportOfTheRest) {
    const auto expectWhole = [this](const char* fault) {
        SCOPED_TRACE(path() + " " + fault);
        const Outcome outcome = report();
        EXPECT_EQ(outcome.exception, "(none)");
        EXPECT_THAT(outcome.xml, testing::HasSubstr("</NIC>"));
    };
    const std::string content = contentOf(path());
    ASSERT_NE(content, "(absent)");
    chmod(path().c_str(), 0);
    expectWhole("unreadable");
    chmod(path().c_str(), 0644);
    machine.file(path(), content.substr(0, content.size() - 1));
    expectWhole("without a final line feed");
    machine.file(path(), "");
    expectWhole("empty");
    machine.file(path(), std::string(1 << 20, '\xff'));
    expectWhole("1 MiB without a line feed");
    std::remove(path().c_str());
    expectWhole("missing");
    machine.directory(path());
    expectWhole("a directory");
}

INSTANTIATE_TEST_SUITE_P(EachFile, BadFile,
                         testing::Values("/etc/resolv.conf", "/etc/sysconfig/network",
                                         "/etc/sysconfig/network-scripts/ifcfg-eth0",
                                         "/etc/sysconfig/network-scripts/ifcfg-bond0", "/etc/redhat-release",
                                         "/etc/udev/rules.d/70-persistent-net.rules", "/proc/net/vlan/config",
                                         "/proc/net/bonding/bond0"),
                         [](const auto& parameter) {
                             std::string name = parameter.param;
                             for (char& character : name) {
                                 character = std::isalnum(static_cast<unsigned char>(character)) != 0 ? character : '_';
                             }
                             return name;
                         });

}  // namespace
}  // namespace kvl::test
