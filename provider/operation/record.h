#ifndef KVL_PROVIDER_OPERATION_RECORD_H
#define KVL_PROVIDER_OPERATION_RECORD_H

#include <string>

namespace kvl::provider {

/// What is changed, for the trace and the system log.
struct Subject {
    std::string module;  ///< the library's module name
    std::string name;    ///< as in "the firmware of 02:00.0"
};

/// Writes the begin and the end of an operation to the trace and to the system log.
class OperationRecord {
public:
    explicit OperationRecord(const Subject& subject) : subject_(subject) {}

    void begun(const std::string& with) const;
    void done(const std::string& how) const;
    void skipped(const std::string& why) const;
    void failed(const std::string& why) const;

    /// @param signal  that was noted meanwhile; nothing is written for 0
    void signalled(int signal) const;

private:
    void message(const char* id, const std::string& text) const;
    void boundary(const char* marker) const;

    Subject subject_;
};

}  // namespace kvl::provider

#endif
