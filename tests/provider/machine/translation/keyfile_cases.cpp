#include "tests/provider/machine/translation/translation_case.h"

namespace kvl::test {
namespace {

constexpr const char* kFile = "/etc/NetworkManager/system-connections/ens192.nmconnection";

}  // namespace

std::vector<TranslationCase> keyfileCases() {
    return {
        {"keyfile: RHEL 9, DHCP", kFile,
         "[connection]\n"
         "id=ens192\n"
         "uuid=9d3f1b1e-0000-4000-8000-000000000001\n"
         "type=ethernet\n"
         "interface-name=ens192\n"
         "\n"
         "[ethernet]\n"
         "\n"
         "[ipv4]\n"
         "method=auto\n"
         "\n"
         "[ipv6]\n"
         "addr-gen-mode=eui64\n"
         "method=auto\n"
         "\n"
         "[proxy]\n",
         "DEVICE=ens192\nONBOOT=yes\nBOOTPROTO=dhcp\n"},
        {"keyfile: RHEL 9, addresses by hand, not at boot", kFile,
         "# by hand\n"
         "[connection]\n"
         "id = the second\n"
         "type=802-3-ethernet\n"
         "autoconnect=false\n"
         "[802-3-ethernet]\n"
         "mac-address=00:1b:21:8e:40:10\n"
         "cloned-mac-address=02:00:00:00:00:0a\n"
         "[ipv4]\n"
         "address1=192.0.2.5/24,192.0.2.1\n"
         "method=manual\n"
         "[ipv6]\n"
         "address1=2001:db8::5/64, 2001:db8::1\n"
         "method=manual\n",
         "ONBOOT=no\nBOOTPROTO=none\nHWADDR=00:1B:21:8E:40:10\nMACADDR=02:00:00:00:00:0A\nIPV6_DEFAULTGW=2001:db8::"
         "1\n"},
        {"keyfile: a port of a bond has no addresses", kFile,
         "[connection]\nid=p1\ntype=ethernet\ninterface-name=eno1\nmaster=bond0\nslave-type=bond\n",
         "DEVICE=eno1\nONBOOT=yes\nBOOTPROTO=none\n"},
        {"keyfile: a random address, carriage returns at line ends", kFile,
         "[connection]\r\ninterface-name=eno1\r\n[ethernet]\r\ncloned-mac-address=random\r\n[ipv4]\r\nmethod=auto\r\n",
         "DEVICE=eno1\nONBOOT=yes\nBOOTPROTO=dhcp\n"},
        {"keyfile: no keyfile", kFile, "DEVICE=eno1\nONBOOT=yes\n", "DEVICE=eno1\nONBOOT=yes\n"},
    };
}

}  // namespace kvl::test
