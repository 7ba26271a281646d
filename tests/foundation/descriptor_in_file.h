#ifndef KVL_TESTS_FOUNDATION_DESCRIPTOR_IN_FILE_H
#define KVL_TESTS_FOUNDATION_DESCRIPTOR_IN_FILE_H

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace kvl::test {

/// Has a descriptor of this process, standard output for instance, lead into a new file as long as this object lives.
class DescriptorInFile {
public:
    DescriptorInFile(int descriptor, const std::string& path) : descriptor_(descriptor) {
        std::fflush(nullptr);
        kept_ = fcntl(descriptor_, F_DUPFD_CLOEXEC, 10);
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(file, descriptor_);
        close(file);
    }
    ~DescriptorInFile() {
        std::fflush(nullptr);
        dup2(kept_, descriptor_);
        close(kept_);
    }

    DescriptorInFile(const DescriptorInFile&) = delete;
    DescriptorInFile& operator=(const DescriptorInFile&) = delete;

private:
    int descriptor_;
    int kept_ = -1;
};

}  // namespace kvl::test

#endif
