#ifndef KVL_PROVIDER_COMMANDS_REPORT_OPTIONS_H
#define KVL_PROVIDER_COMMANDS_REPORT_OPTIONS_H

#include <string>
#include <vector>

#include "provider/library/lan_collection.h"
#include "provider/run/run_options.h"

namespace CLI {
class App;
}

namespace kvl::provider {

/// The exit codes of `kvl report`.
enum ReportExit : int {
    kReportWritten = 0,
    kReportIncomplete = 1,  ///< Something could not be collected: named on standard error.
    kNoReport = 3,          ///< Nothing could be collected or written, or the run was refused.
};

/// The same for the help texts.
constexpr const char* kReportExitHelp =
    "Exit codes:\n"
    "  0  report written\n"
    "  1  report written, but something could not be collected (named on standard error)\n"
    "  2  wrong usage\n"
    "  3  no report: nothing could be collected, the report could not be written, or the run was\n"
    "     refused; the reason stands on standard error\n";

enum class Format { kText, kXml };

/// What `kvl report` was asked for.
struct ReportOptions {
    LanSelection lan;
    std::string outputFile;  ///< empty: standard output
    Format format = Format::kText;
    bool translates = true;             ///< hands the library what it reads, whatever form the machine prints
    unsigned commandLimitSeconds = 20;  ///< longest time of one command; 0: none
    RunOptions run;

    // What this program passes on to itself when it runs again in a private view, see runInPrivateView().
    int heldLock = -1;        ///< descriptor of the machine's lock
    std::string placeInView;  ///< where the file that is named by outputFile is
};

/// Adds the options to the command, which checks them when it is parsed.
/// @param options  receives what was given; must live as long as the command
void addReportOptions(CLI::App& command, ReportOptions& options);

/// The command line for the same report in a private view.
/// @param arguments  those that this program was given
std::vector<std::string> argumentsInView(std::vector<std::string> arguments, int heldLock,
                                         const std::string& placeInView);

}  // namespace kvl::provider

#endif
