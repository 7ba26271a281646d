#ifndef KVL_REFERENCE_HOST_FILE_DESCRIPTOR_H
#define KVL_REFERENCE_HOST_FILE_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace kvl::host {

/// Owner of one descriptor; -1 stands for none.
class FileDescriptor {
public:
    explicit FileDescriptor(int number = -1) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            close();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }
    ~FileDescriptor() { close(); }

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }

    /// Closes it now. @return false if the system reports a late write error; true without a descriptor
    bool close() noexcept { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

private:
    int number_;
};

}  // namespace kvl::host

#endif
