#ifndef KVL_REFERENCE_HOST_TRACE_FILE_H
#define KVL_REFERENCE_HOST_TRACE_FILE_H

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

namespace spdlog::sinks {
class sink;
}

namespace kvl::host {

/// A file of dated lines that is kept from growing without end: a regular file that reaches its limit becomes
/// "name.1.ext", and three such older files are kept. What a link or a device file stands for is only appended to.
/// A line that can't be written is dropped, and the next line tries the file again.
class TraceFile {
public:
    static constexpr std::size_t kDefaultLimit = std::size_t{5} * 1024 * 1024;

    /// Opens nothing yet.
    /// @param path   the file; missing directories above it are made
    /// @param limit  bytes at which a new file is started
    explicit TraceFile(std::string path, std::size_t limit = kDefaultLimit);
    ~TraceFile();

    TraceFile(const TraceFile&) = delete;
    TraceFile& operator=(const TraceFile&) = delete;

    /// Appends the time of day and `line`, which holds no line feed. Any number of threads may write.
    void write(const std::string& line) noexcept;

private:
    // Throws if no line can be written.
    std::unique_ptr<spdlog::sinks::sink> open() const;

    const std::string path_;
    const std::size_t limit_;
    std::mutex mutex_;
    std::unique_ptr<spdlog::sinks::sink> sink_;
};

}  // namespace kvl::host

#endif
