#ifndef KVL_PROVIDER_EXIT_CODES_H
#define KVL_PROVIDER_EXIT_CODES_H

namespace kvl::provider {

/// How the program ends. Scripts rely on these numbers.
enum ExitCode : int {
    kReportWritten = 0,     ///< The report is written, and everything in it could be collected.
    kPartlyCollected = 1,   ///< The report is written, but something could not be collected: named on standard error.
    kWrongUsage = 2,        ///< The command line can't be carried out. Nothing was done.
    kNothingCollected = 3,  ///< There is no report: nothing could be collected, or not be written.
};

/// The same for the help texts.
constexpr const char* kExitCodesHelp =
    "Exit codes:\n"
    "  0  report written\n"
    "  1  report written, but something could not be collected (named on standard error)\n"
    "  2  wrong usage\n"
    "  3  no report: nothing could be collected, or the report could not be written\n";

}  // namespace kvl::provider

#endif
