#include "tests/provider/machine/translation/translation_case.h"

namespace kvl::test {
namespace {

constexpr const char* kFile = "/etc/sysconfig/network-scripts/ifcfg-eth0";
constexpr const char* kNetwork = "/etc/sysconfig/network";

const std::string kOfInstaller =
    "DEVICE=\"eth0\"\n"
    "BOOTPROTO=\"dhcp\"\n"
    "HWADDR=\"D4:AE:52:C1:07:3A\"\n"
    "NM_CONTROLLED=\"yes\"\n"
    "ONBOOT=\"yes\"\n"
    "TYPE=\"Ethernet\"\n";

const std::string kByHand = "DEVICE=bond0\nONBOOT=no\nBOOTPROTO=static\nIPADDR=192.168.10.15\n";

}  // namespace

std::vector<TranslationCase> ifcfgCases() {
    return {
        {"ifcfg: single quotes", kFile, "DEVICE=eth0\nONBOOT='yes'\nBOOTPROTO='dhcp'\n",
         "DEVICE=eth0\nONBOOT=yes\nBOOTPROTO=dhcp\n"},
        {"ifcfg: a comment after the value", kFile, "ONBOOT=yes # at boot\nBOOTPROTO=dhcp # from the router\n",
         "ONBOOT=yes\nBOOTPROTO=dhcp\n"},
        {"ifcfg: a comment above the value", kFile, "#ONBOOT=yes\nONBOOT=no\nBOOTPROTO=none\n",
         "ONBOOT=no\nBOOTPROTO=none\n"},
        {"ifcfg: commented out altogether", kFile,
         "# ONBOOT=no\n#BOOTPROTO=dhcp\n#HWADDR=00:1B:21:00:00:01\nMTU=9000\n",
         "MTU=9000\nONBOOT=yes\nBOOTPROTO=none\n"},
        {"ifcfg: without ONBOOT and BOOTPROTO", kFile, "DEVICE=eth4:1\nONPARENT=yes\n",
         "DEVICE=eth4:1\nONPARENT=yes\nONBOOT=yes\nBOOTPROTO=none\n"},
        {"ifcfg: an empty file", kFile, "", "ONBOOT=yes\nBOOTPROTO=none\n"},
        {"ifcfg: the last assignment wins", kFile, "ONBOOT=no\nBOOTPROTO=none\nONBOOT=yes\nBOOTPROTO=dhcp\n",
         "ONBOOT=yes\nBOOTPROTO=dhcp\n"},
        {"ifcfg: no in any case of letters", kFile, "ONBOOT=NO\nBOOTPROTO=dhcp\n", "ONBOOT=NO\nBOOTPROTO=dhcp\n"},
        {"ifcfg: true is not no", kFile, "ONBOOT=TRUE\nBOOTPROTO=dhcp\n", "ONBOOT=yes\nBOOTPROTO=dhcp\n"},
        {"ifcfg: DHCP in capitals starts no client", kFile, "ONBOOT=yes\nBOOTPROTO=\"DHCP\"\n",
         "ONBOOT=yes\nBOOTPROTO=\"DHCP\"\n"},
        {"ifcfg: bootp starts the same client as dhcp", kFile, "ONBOOT=yes\nBOOTPROTO=bootp\n",
         "ONBOOT=yes\nBOOTPROTO=dhcp\n"},
        {"ifcfg: export, blanks before the name, two on a line", kFile,
         "  ONBOOT=yes; BOOTPROTO=dhcp\nexport HWADDR=00:1b:21:00:00:01 MTU=9000\n",
         "ONBOOT=yes\nBOOTPROTO=dhcp\nHWADDR=00:1b:21:00:00:01\n"},
        {"ifcfg: another key that ends like one", kFile,
         "NOT_ONBOOT=no\nONBOOT=yes\nIPV6_BOOTPROTO=x\nBOOTPROTO=dhcp\nMY_HWADDR=x\nHWADDR='00:1B:21:00:00:01'\n",
         "ONBOOT=yes\nBOOTPROTO=dhcp\nHWADDR=00:1B:21:00:00:01\n"},
        {"ifcfg: blanks around the equals sign are no assignment", kFile, "ONBOOT = no\nBOOTPROTO=dhcp\n",
         "ONBOOT = no\nONBOOT=yes\nBOOTPROTO=dhcp\n"},
        {"ifcfg: an assignment for one program is none", kFile, "ONBOOT=no true\nBOOTPROTO=dhcp\n",
         "ONBOOT=yes\nBOOTPROTO=dhcp\n"},
        {"ifcfg: addresses", kFile,
         "ONBOOT=yes\nBOOTPROTO=none\nMACADDR='02:00:00:00:00:01' # ours\nIPV6_DEFAULTGW=\"fe80::1%eth0\" # theirs\n",
         "ONBOOT=yes\nBOOTPROTO=none\nMACADDR=02:00:00:00:00:01\nIPV6_DEFAULTGW=fe80::1%eth0\n"},
        {"ifcfg: carriage returns at line ends", kFile, "ONBOOT=yes\r\nBOOTPROTO=dhcp\r\n",
         "ONBOOT=yes\nBOOTPROTO=dhcp\n"},
        {"ifcfg: of RHEL 6's installer", kFile, kOfInstaller, kOfInstaller},
        {"ifcfg: by hand, as the library reads it", kFile, kByHand, kByHand},
        {"network: a commented gateway", kNetwork,
         "NETWORKING=yes\n#IPV6_DEFAULTGW=fe80::9\nIPV6_DEFAULTGW='fe80::1'\n",
         "NETWORKING=yes\nIPV6_DEFAULTGW=fe80::1\n"},
        {"network: without a gateway", kNetwork, "NETWORKING=yes\nHOSTNAME=a\n", "NETWORKING=yes\nHOSTNAME=a\n"},
    };
}

}  // namespace kvl::test
