// The smallest provider: writes the LAN report of this machine to a file, for the PCI vendors that it is told.
// It must be able to write to /opt/tarvenn/kvl/provider/tmp, and must not run twice at once.

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "collector/CNetworkParameter.h"
#include "lan_report/CLanXmlWriter.h"

int main(int argc, char** argv) try {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s FILE VENDOR...\n", argv[0]);
        return 2;
    }
    setenv("LC_ALL", "C", 1);
    umask(077);

    CNetworkParameter collector("example");
    collector.GetNetworkConfigurations();
    collector.GetEtherConfigurations();
    collector.GetBondingConfifurations();
    collector.GetRoutingConfigurations();

    CLanXmlWriter writer({argv + 2, argv + argc}, &collector, "example");
    writer.SetCommonInfo();
    writer.SetPhysicalInfo();
    writer.SetTeamInfo();
    writer.SetVirtualInfo();
    return writer.Write(argv[1]) ? 0 : 1;
} catch (const std::exception& error) {
    std::fprintf(stderr, "a command's output does not have the expected form: %s\n", error.what());
    return 3;
}
