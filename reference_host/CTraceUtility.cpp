#include "host/CTraceUtility.h"

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "reference_host/formatted_text.h"
#include "reference_host/operator_messages.h"
#include "reference_host/trace_log.h"

namespace {

using kvl::host::filledText;
using kvl::host::findOperatorMessage;
using kvl::host::formattedText;
using kvl::host::OperatorMessage;

// Callers trace between a failure and their look at its reason.
class KeptErrno {
public:
    KeptErrno() = default;
    KeptErrno(const KeptErrno&) = delete;
    KeptErrno& operator=(const KeptErrno&) = delete;
    ~KeptErrno() { errno = value_; }

private:
    const int value_ = errno;
};

std::string textOrNull(const char* text) {
    return text != nullptr ? text : "(null)";
}

using NextText = std::function<const char*()>;

std::string operatorText(const char* messageId, const NextText& nextArgument) {
    const std::string id = textOrNull(messageId);
    const OperatorMessage* message = findOperatorMessage(id);
    if (message == nullptr) {
        return id + ": no text is known for this message";
    }
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < message->argumentCount; ++i) {
        texts.push_back(textOrNull(nextArgument()));
    }
    return id + ": " + filledText(message->text, texts);
}

void writeDebug(const char* module, TRACE_DBG_LEVEL level, const char* format, std::va_list arguments) noexcept {
    try {
        if (kvl::host::wantsLevel(level)) {
            kvl::host::recordDebugLine(textOrNull(module), level, formattedText(format, arguments));
        }
    } catch (...) {
    }
}

void writeTrace(const char* module, const char* messageId, const NextText& nextArgument) noexcept {
    try {
        kvl::host::recordOperatorMessage(textOrNull(module), operatorText(messageId, nextArgument));
    } catch (...) {
    }
}

}  // namespace

void CTraceUtility::WriteDebug(const char* module, TRACE_DBG_LEVEL level, const char* format, ...) {
    const KeptErrno keptErrno;
    std::va_list arguments;
    va_start(arguments, format);
    writeDebug(module, level, format, arguments);
    va_end(arguments);
}

void CTraceUtility::WriteTrace(const char* module, const char* messageId, ...) {
    const KeptErrno keptErrno;
    std::va_list arguments;
    va_start(arguments, messageId);
    writeTrace(module, messageId, [&arguments] { return va_arg(arguments, const char*); });
    va_end(arguments);
}
