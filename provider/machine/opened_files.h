#ifndef KVL_PROVIDER_MACHINE_OPENED_FILES_H
#define KVL_PROVIDER_MACHINE_OPENED_FILES_H

#include <functional>
#include <optional>
#include <string>

namespace kvl::provider {

/// @param path  of a file that is opened for reading
/// @return what the reader is to find there; nothing for the file as it is
using FileAnswer = std::function<std::optional<std::string>(const std::string& path)>;

/// Answers the library when it opens a file by a stream, for as long as the object lives. One object at a time.
class AnsweredFiles {
public:
    explicit AnsweredFiles(FileAnswer answer);
    ~AnsweredFiles();

    AnsweredFiles(const AnsweredFiles&) = delete;
    AnsweredFiles& operator=(const AnsweredFiles&) = delete;
};

}  // namespace kvl::provider

#endif
