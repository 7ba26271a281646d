#ifndef KVL_PROVIDER_REPORT_REPORT_OPTIONS_H
#define KVL_PROVIDER_REPORT_REPORT_OPTIONS_H

#include <list>
#include <string>
#include <vector>

#include "lan_report/CLanXmlWriter.h"
#include "provider/machine/run_options.h"

namespace CLI {
class App;
}

namespace kvl::provider {

/// A section of the report, with its name on the command line.
struct Section {
    const char* name;
    void (CLanXmlWriter::*add)();
};

enum class Format { kText, kXml };
enum class LegacyCommands { kAuto, kNever };

/// What `kvl report` was asked for.
struct ReportOptions {
    std::list<std::string> vendors;        ///< PCI vendors, without "0x"; empty: all that are found
    std::vector<int> skippedGroups;        ///< numbers of ethtool groups, as the collector knows them
    std::vector<const Section*> sections;  ///< in the order of the report
    std::string module = "kvl";
    std::string outputFile;  ///< empty: standard output
    Format format = Format::kText;
    LegacyCommands legacyCommands = LegacyCommands::kAuto;
    unsigned commandLimitSeconds = 20;  ///< longest time of one command; 0: none
    RunOptions run;
};

/// Adds the options to the command, which checks them when it is parsed.
/// @param options  receives what was given; must live as long as the command
void addReportOptions(CLI::App& command, ReportOptions& options);

}  // namespace kvl::provider

#endif
