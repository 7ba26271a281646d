#include "tests/provider/machine/translation/translation_case.h"

namespace kvl::test {
namespace {

constexpr const char* kCommand = "/sbin/ifconfig -a";

const std::string kOldBlocks =
    "bond0     Link encap:Ethernet  HWaddr 52:54:00:12:34:00  \n"
    "          inet addr:192.168.10.15  Bcast:192.168.10.255  Mask:255.255.255.0\n"
    "          inet6 addr: fe80::5054:ff:fe12:3400/64 Scope:Link\n"
    "          UP BROADCAST RUNNING MASTER MULTICAST  MTU:1500  Metric:1\n"
    "          RX packets:0 errors:0 dropped:0 overruns:0 frame:0\n"
    "          TX packets:16 errors:0 dropped:0 overruns:0 carrier:0\n"
    "          collisions:0 txqueuelen:1000 \n"
    "          RX bytes:0 (0.0 B)  TX bytes:1420 (1.3 KiB)\n"
    "\n"
    "Ifconfig uses the ioctl access method to get the full address information, which limits hardware addresses to 8 "
    "bytes.\n"
    "Because Infiniband address has 20 bytes, only the first 8 bytes are displayed correctly.\n"
    "Ifconfig is obsolete! For replacement check ip.\n"
    "ib0       Link encap:InfiniBand  HWaddr 80:00:00:48:FE:80:00:00:00:00:00:00:00:00:00:00:00:00:00:00  \n"
    "          BROADCAST MULTICAST  MTU:2044  Metric:1\n"
    "\n";

}  // namespace

std::vector<TranslationCase> ifconfigCases() {
    return {
        {"net-tools 2.10: a bond", kCommand,
         "bond0: flags=5187<UP,BROADCAST,RUNNING,MASTER,MULTICAST>  mtu 1500\n"
         "        inet 192.168.10.15  netmask 255.255.255.0  broadcast 192.168.10.255\n"
         "        inet6 fe80::5054:ff:fe12:3400  prefixlen 64  scopeid 0x20<link>\n"
         "        inet6 2001:db8:10::15  prefixlen 64  scopeid 0x0<global>\n"
         "        ether 52:54:00:12:34:00  txqueuelen 1000  (Ethernet)\n"
         "        RX packets 0  bytes 0 (0.0 B)\n"
         "        RX errors 1  dropped 2  overruns 3  frame 4\n"
         "        TX packets 16  bytes 1420 (1.3 KiB)\n"
         "        TX errors 5  dropped 6 overruns 7  carrier 8  collisions 9\n"
         "\n",
         "bond0     Link encap:Ethernet  HWaddr 52:54:00:12:34:00  \n"
         "          inet addr:192.168.10.15  Bcast:192.168.10.255  Mask:255.255.255.0\n"
         "          inet6 addr: fe80::5054:ff:fe12:3400/64 Scope:Link\n"
         "          inet6 addr: 2001:db8:10::15/64 Scope:Global\n"
         "          UP BROADCAST RUNNING MASTER MULTICAST  MTU:1500  Metric:1\n"
         "          RX packets:0 errors:1 dropped:2 overruns:3 frame:4\n"
         "          TX packets:16 errors:5 dropped:6 overruns:7 carrier:8\n"
         "          collisions:9 txqueuelen:1000 \n"
         "          RX bytes:0 (0.0 B)  TX bytes:1420 (1.3 KiB)\n"
         "\n"},
        {"net-tools 2.10: a slave with an interrupt, its MAC address in capitals", kCommand,
         "eth2: flags=6211<UP,BROADCAST,RUNNING,SLAVE,MULTICAST>  mtu 1500\n"
         "        ether 52:54:00:ab:cd:ef  txqueuelen 1000  (Ethernet)\n"
         "        RX packets 6  bytes 408 (408.0 B)\n"
         "        RX errors 0  dropped 0  overruns 0  frame 0\n"
         "        TX packets 12  bytes 772 (772.0 B)\n"
         "        TX errors 0  dropped 0 overruns 0  carrier 0  collisions 0\n"
         "        device interrupt 11  memory 0xfe400000-fe420000  \n"
         "\n",
         "eth2      Link encap:Ethernet  HWaddr 52:54:00:AB:CD:EF  \n"
         "          UP BROADCAST RUNNING SLAVE MULTICAST  MTU:1500  Metric:1\n"
         "          RX packets:6 errors:0 dropped:0 overruns:0 frame:0\n"
         "          TX packets:12 errors:0 dropped:0 overruns:0 carrier:0\n"
         "          collisions:0 txqueuelen:1000 \n"
         "          RX bytes:408 (408.0 B)  TX bytes:772 (772.0 B)\n"
         "          Interrupt:11 Memory:fe400000-fe420000 \n"
         "\n"},
        {"net-tools 2.10: an alias after its interface, without counters and broadcast address", kCommand,
         "br0: flags=4098<BROADCAST,MULTICAST>  mtu 1500\n"
         "        ether aa:b7:d4:8f:f1:04  txqueuelen 1000  (Ethernet)\n"
         "        device interrupt 5  base 0x2000  \n"
         "\n"
         "br0:1: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500\n"
         "        inet 10.0.0.2  netmask 255.255.255.0  broadcast 0.0.0.0\n"
         "        ether aa:b7:d4:8f:f1:04  txqueuelen 1000  (Ethernet)\n"
         "\n",
         "br0       Link encap:Ethernet  HWaddr AA:B7:D4:8F:F1:04  \n"
         "          BROADCAST MULTICAST  MTU:1500  Metric:1\n"
         "          Interrupt:5 Base address:0x2000 \n"
         "\n"
         "br0:1     Link encap:Ethernet  HWaddr AA:B7:D4:8F:F1:04  \n"
         "          inet addr:10.0.0.2  Bcast:0.0.0.0  Mask:255.255.255.0\n"
         "          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n"
         "\n"},
        {"net-tools 2.0 of RHEL 7: the loopback", kCommand,
         "lo: flags=73<UP,LOOPBACK,RUNNING>  mtu 65536\n"
         "        inet 127.0.0.1  netmask 255.0.0.0\n"
         "        inet6 ::1  prefixlen 128  scopeid 0x10<host>\n"
         "        loop  txqueuelen 1000  (Local Loopback)\n"
         "        RX packets 7  bytes 586 (586.0 B)\n"
         "        RX errors 0  dropped 0  overruns 0  frame 0\n"
         "        TX packets 7  bytes 586 (586.0 B)\n"
         "        TX errors 0  dropped 0 overruns 0  carrier 0  collisions 0\n"
         "\n",
         "lo        Link encap:Local Loopback  \n"
         "          inet addr:127.0.0.1  Mask:255.0.0.0\n"
         "          inet6 addr: ::1/128 Scope:Host\n"
         "          UP LOOPBACK RUNNING  MTU:65536  Metric:1\n"
         "          RX packets:7 errors:0 dropped:0 overruns:0 frame:0\n"
         "          TX packets:7 errors:0 dropped:0 overruns:0 carrier:0\n"
         "          collisions:0 txqueuelen:1000 \n"
         "          RX bytes:586 (586.0 B)  TX bytes:586 (586.0 B)\n"
         "\n"},
        {"net-tools 2.10: every scope", kCommand,
         "br0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500\n"
         "        inet6 fe80::1  prefixlen 64  scopeid 0x20<link>\n"
         "        inet6 fec0::1  prefixlen 64  scopeid 0x40<site>\n"
         "        inet6 2001:db8::1  prefixlen 64  scopeid 0x0<global>\n"
         "        inet6 ::10.1.1.1  prefixlen 96  scopeid 0x80<compat,global>\n"
         "        inet6 ::1  prefixlen 128  scopeid 0x10<host>\n"
         "        inet6 ff0e::1  prefixlen 128  scopeid 0x2<>\n"
         "        ether aa:b7:d4:8f:f1:04  txqueuelen 1000  (Ethernet)\n"
         "\n",
         "br0       Link encap:Ethernet  HWaddr AA:B7:D4:8F:F1:04  \n"
         "          inet6 addr: fe80::1/64 Scope:Link\n"
         "          inet6 addr: fec0::1/64 Scope:Site\n"
         "          inet6 addr: 2001:db8::1/64 Scope:Global\n"
         "          inet6 addr: ::10.1.1.1/96 Scope:Compat\n"
         "          inet6 addr: ::1/128 Scope:Host\n"
         "          inet6 addr: ff0e::1/128 Scope:Unknown\n"
         "          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n"
         "\n"},
        {"net-tools 2.10: tunnels and a modem line, which have no HWaddr or one of zeros", kCommand,
         "tun0: flags=4241<UP,POINTOPOINT,NOARP,MULTICAST>  mtu 1500\n"
         "        inet 10.8.0.1  netmask 255.255.255.255  destination 10.8.0.2\n"
         "        unspec 00-00-00-00-00-00-00-00-00-00-00-00-00-00-00-00  txqueuelen 500  (UNSPEC)\n"
         "\n"
         "sit0: flags=128<NOARP>  mtu 1480\n"
         "        sit  txqueuelen 1000  (IPv6-in-IPv4)\n"
         "\n"
         "tunl0: flags=128<NOARP>  mtu 1480\n"
         "        tunnel   txqueuelen 1000  (IPIP Tunnel)\n"
         "\n"
         "ppp0: flags=4305<UP,POINTOPOINT,RUNNING,NOARP,MULTICAST>  mtu 1492\n"
         "        inet 198.51.100.7  netmask 255.255.255.255  destination 203.0.113.1\n"
         "        ppp  txqueuelen 3  (Point-to-Point Protocol)\n"
         "\n",
         "tun0      Link encap:UNSPEC  HWaddr 00-00-00-00-00-00-00-00-00-00-00-00-00-00-00-00  \n"
         "          inet addr:10.8.0.1  P-t-P:10.8.0.2  Mask:255.255.255.255\n"
         "          UP POINTOPOINT NOARP MULTICAST  MTU:1500  Metric:1\n"
         "\n"
         "sit0      Link encap:IPv6-in-IPv4  \n"
         "          NOARP  MTU:1480  Metric:1\n"
         "\n"
         "tunl0     Link encap:IPIP Tunnel  \n"
         "          NOARP  MTU:1480  Metric:1\n"
         "\n"
         "ppp0      Link encap:Point-to-Point Protocol  \n"
         "          inet addr:198.51.100.7  P-t-P:203.0.113.1  Mask:255.255.255.255\n"
         "          UP POINTOPOINT RUNNING NOARP MULTICAST  MTU:1492  Metric:1\n"
         "\n"},
        {"net-tools 2.0 of RHEL 7: a warning in front of an InfiniBand address", kCommand,
         "ib0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 2044\n"
         "        inet 192.0.2.9  netmask 255.255.255.0  broadcast 192.0.2.255\n"
         "Infiniband hardware address can be incorrect! Please read BUGS section in ifconfig(8).\n"
         "        infiniband 80:00:02:08:fe:80:00:00:00:00:00:00:00:00:00:00:00:00:00:00  txqueuelen 256  "
         "(InfiniBand)\n"
         "\n",
         "ib0       Link encap:InfiniBand  HWaddr 80:00:02:08:FE:80:00:00:00:00:00:00:00:00:00:00:00:00:00:00  \n"
         "          inet addr:192.0.2.9  Bcast:192.0.2.255  Mask:255.255.255.0\n"
         "          UP BROADCAST RUNNING MULTICAST  MTU:2044  Metric:1\n"
         "\n"},
        {"net-tools 2.10: long names, a metric, no flags", kCommand,
         "averylongname15: flags=0<>  mtu 1500  metric 3\n"
         "        ether 52:54:00:12:34:04  txqueuelen 1000  (Ethernet)\n"
         "\n"
         "enp3s0f0: flags=4098<BROADCAST,MULTICAST>  mtu 9000\n"
         "        ether 52:54:00:12:34:05  (Ethernet)\n"
         "\n",
         "averylongname15 Link encap:Ethernet  HWaddr 52:54:00:12:34:04  \n"
         "          [NO FLAGS]  MTU:1500  Metric:3\n"
         "\n"
         "enp3s0f0  Link encap:Ethernet  HWaddr 52:54:00:12:34:05  \n"
         "          BROADCAST MULTICAST  MTU:9000  Metric:1\n"
         "\n"},
        {"net-tools 2.10: the last block was not closed, but is complete", kCommand,
         "eth0: flags=4098<BROADCAST,MULTICAST>  mtu 1500\n"
         "        inet 10.0.0.1  netmask 255.0.0.0  broadcast 10.255.255.255\n"
         "        ether 52:54:00:12:34:04  txqueuelen 1000  (Ethernet)\n",
         "eth0      Link encap:Ethernet  HWaddr 52:54:00:12:34:04  \n"
         "          inet addr:10.0.0.1  Bcast:10.255.255.255  Mask:255.0.0.0\n"
         "          BROADCAST MULTICAST  MTU:1500  Metric:1\n"
         "\n"},
        {"net-tools 2.10: cut in an address", kCommand,
         "eth0: flags=4098<BROADCAST,MULTICAST>  mtu 1500\n"
         "        inet 10.0.0.1",
         "eth0      Link encap:UNSPEC  \n"
         "          BROADCAST MULTICAST  MTU:1500  Metric:1\n"},
        {"net-tools 2.10: carriage returns at line ends", kCommand,
         "eth0: flags=4098<BROADCAST,MULTICAST>  mtu 1500\r\n"
         "        ether 52:54:00:12:34:04  txqueuelen 1000  (Ethernet)\r\n"
         "\r\n",
         "eth0      Link encap:Ethernet  HWaddr 52:54:00:12:34:04  \n"
         "          BROADCAST MULTICAST  MTU:1500  Metric:1\n"
         "\n"},
        {"net-tools 1.60 and busybox", kCommand, kOldBlocks, kOldBlocks},
    };
}

}  // namespace kvl::test
