#ifndef KVL_PROVIDER_EXIT_CODES_H
#define KVL_PROVIDER_EXIT_CODES_H

namespace kvl::provider {

/// How the program ends. Scripts rely on these numbers.
enum ExitCode : int {
    kReportWritten = 0,     ///< The report is written, or the question answered, and nothing is missing.
    kPartlyCollected = 1,   ///< The same, but something could not be collected: named on standard error.
    kWrongUsage = 2,        ///< The command line can't be carried out. Nothing was done.
    kNothingCollected = 3,  ///< There is no report or answer: nothing could be collected, written, or it was refused.

    // Answers of the adapter commands, beside 0.
    kOlder = 10,               ///< compare: the second version is the older.
    kNewer = 11,               ///< compare: the second version is the newer.
    kNotAVersion = 12,         ///< compare: a version has not the form of its kind.
    kDriverNotConfirmed = 13,  ///< driver-check: the driver has another version, or nothing could be found out.
    kDriverAwaitsBoot = 14,    ///< driver-check: the same as 13, and as kOtherBootImage.
    kOtherBootImage = 15,      ///< boot-image: another kernel may start next than the running one.
    kComponentMissing = 16,    ///< components: one is missing, or can't be run.
    kToolNotSilent = 17,       ///< tool-check: the management tool does not stand as a silent install left it.

    // How the commands end that change something, beside 0 and 2.
    kNothingChanged = 1,  ///< It failed, and nothing was changed.
    kSkipped = 3,         ///< There was nothing to do, or the operator said no.
    kChanged = 4,         ///< It failed when something was changed already: which state that is was told.
    kInterrupted = 130,   ///< A signal came meanwhile: the update was ended properly, and its result told.
};

/// The same for the program's own help text.
constexpr const char* kProgramExitCodesHelp =
    "Exit codes:\n"
    "  0  done, and nothing is missing\n"
    "  2  wrong usage; nothing was done\n"
    "  All others are the command's own: 'kvl COMMAND --help' tells them.\n";

/// For the help texts of `kvl report` and `kvl replay`.
constexpr const char* kExitCodesHelp =
    "Exit codes:\n"
    "  0  report written\n"
    "  1  report written, but something could not be collected (named on standard error)\n"
    "  2  wrong usage\n"
    "  3  no report: nothing could be collected, the report could not be written, or the run was\n"
    "     refused; the reason stands on standard error\n";

/// For the adapter commands, which end with 2 and 3 alike.
constexpr const char* kAdaptersExitCodesHelp =
    "Exit codes:\n"
    "  0   the adapters are listed\n"
    "  1   the same, but something could not be had (named on standard error)\n"
    "  2   wrong usage\n"
    "  3   there is no list; the reason stands on standard error\n";

constexpr const char* kAdapterInfoExitCodesHelp =
    "Exit codes:\n"
    "  0   the port is described\n"
    "  1   the same, but something could not be had (named on standard error)\n"
    "  2   wrong usage\n"
    "  3   there is no description; the reason stands on standard error\n";

constexpr const char* kVersionExitCodesHelp =
    "Exit codes:\n"
    "  0   the version is told\n"
    "  2   wrong usage\n"
    "  3   there is none; the reason stands on standard error\n";

constexpr const char* kCompareExitCodesHelp =
    "Exit codes:\n"
    "  0   NEW is equal to OLD\n"
    "  2   wrong usage\n"
    "  3   the answer could not be written\n"
    "  10  NEW is older\n"
    "  11  NEW is newer\n"
    "  12  one of them is not a version of this kind (named on standard error)\n";

constexpr const char* kSupportedExitCodesHelp =
    "Exit codes:\n"
    "  0   the catalogue is listed\n"
    "  1   the same, but one family's is missing or can't be right (named on standard error)\n"
    "  2   wrong usage\n"
    "  3   there is none that could be listed; the reason stands on standard error\n";

constexpr const char* kSlotExitCodesHelp =
    "Exit codes:\n"
    "  0   the slot is told\n"
    "  2   wrong usage\n"
    "  3   the answer could not be written\n";

constexpr const char* kDriverCheckExitCodesHelp =
    "Exit codes:\n"
    "  0   the installed driver has this version\n"
    "  2   wrong usage\n"
    "  3   the check could not begin; the reason stands on standard error\n"
    "  13  it has another version, or nothing could be found out\n"
    "  14  it has another version, and the default boot entry has another RAM disk than that of\n"
    "      the running kernel, or names it with a directory in front\n";

constexpr const char* kBootImageExitCodesHelp =
    "Exit codes:\n"
    "  0   the default boot entry has the running kernel's RAM disk\n"
    "  2   wrong usage\n"
    "  3   that could not be told; the reason stands on standard error\n"
    "  15  it has another, or names it with a directory in front\n";

constexpr const char* kUpdateExitCodesHelp =
    "Exit codes:\n"
    "  0    updated\n"
    "  1    failed, and nothing was changed\n"
    "  2    wrong usage\n"
    "  3    skipped on purpose (standard error says why)\n"
    "  4    failed after something was changed (standard error says what)\n"
    "  130  interrupted: the update was ended properly first, and its result told\n";

constexpr const char* kToolCheckExitCodesHelp =
    "Exit codes:\n"
    "  0   the tool stands as a silent install left it\n"
    "  2   wrong usage\n"
    "  3   that could not be told; the reason stands on standard error\n"
    "  17  it does not\n";

constexpr const char* kPendingExitCodesHelp =
    "Exit codes:\n"
    "  0   listed, marked or taken\n"
    "  2   wrong usage\n"
    "  3   that could not be done, or not wholly; the reason stands on standard error\n";

constexpr const char* kComponentsExitCodesHelp =
    "Exit codes:\n"
    "  0   nothing is missing\n"
    "  2   wrong usage\n"
    "  3   the answer could not be written\n"
    "  16  something is, or can't be run (named on standard error)\n";

}  // namespace kvl::provider

#endif
