#ifndef KVL_ADAPTER_RESULT_MODE_H
#define KVL_ADAPTER_RESULT_MODE_H

namespace kvl {

/// How the outcome of an updater is judged, by the number that a provider passes.
enum ResultMode : int {
    kByExitCode = 1,   ///< It ends with 0.
    kByFirstLine = 2,  ///< Its output begins with the line "0".
    kByOutput = 3,     ///< Its output holds the texts that the message file wants.
    kByReport = 4,     ///< The one report that it leaves holds them.
};

}  // namespace kvl

#endif
