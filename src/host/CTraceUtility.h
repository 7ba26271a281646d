#ifndef KVL_HOST_CTRACEUTILITY_H
#define KVL_HOST_CTRACEUTILITY_H

/// Levels of the debug trace. They are single bits, so a host can hold a filter as a mask.
enum TRACE_DBG_LEVEL {
    TRACE_DBG_FLOW = 1,      ///< Values read, items found, record dumps.
    TRACE_DBG_ERROR = 2,     ///< Errors.
    TRACE_DBG_BOUNDARY = 4,  ///< Where an operation begins and ends.
    TRACE_DBG_WARNING = 16,  ///< A failure that doesn't stop the procedure.
    TRACE_DBG_NOTICE = 32,   ///< A notable condition that is no error.
};

/// The trace of the loading process. The library calls on the thread that called it, also between a failure and its
/// look at `errno`, which a host leaves alone. No call may throw or block for long.
class __attribute__((visibility("default"))) CTraceUtility {
public:
    /// Records one line of the debug trace.
    /// @param module  name of the calling module
    /// @param level   what kind of line it is
    /// @param format  printf format (%s, %d, %x), filled with the arguments that follow
    static void WriteDebug(const char* module, TRACE_DBG_LEVEL level, const char* format, ...)
        __attribute__((format(printf, 3, 4)));

    /// Records one numbered operator message.
    /// @param module     name of the calling module
    /// @param messageId  selects a text that the host holds, such as "MSGID_EMULEX_0004_F"; the
    ///                   `const char*` arguments that follow fill it in. It is no printf format, so a compiler can't
    ///                   compare them
    static void WriteTrace(const char* module, const char* messageId, ...);
};

#endif
