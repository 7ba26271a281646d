#ifndef KVL_PROVIDER_MACHINE_TRANSLATION_LINE_ENDS_H
#define KVL_PROVIDER_MACHINE_TRANSLATION_LINE_ENDS_H

#include <string>

namespace kvl::provider {

/// Drops the carriage returns at line ends. The library keeps them in values, where they spoil comparisons and reach
/// the report. Files that were edited on another system have them, and outputs recorded through a terminal. Every
/// translation does this too.
std::string withoutCarriageReturns(const std::string& output);

}  // namespace kvl::provider

#endif
