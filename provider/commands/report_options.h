#ifndef KVL_PROVIDER_COMMANDS_REPORT_OPTIONS_H
#define KVL_PROVIDER_COMMANDS_REPORT_OPTIONS_H

#include <string>

#include "provider/library/lan_collection.h"
#include "provider/run/run_options.h"

namespace CLI {
class App;
}

namespace kvl::provider {

enum class Format { kText, kXml };
enum class LegacyCommands { kAuto, kNever };

/// What `kvl report` was asked for.
struct ReportOptions {
    LanSelection lan;
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
