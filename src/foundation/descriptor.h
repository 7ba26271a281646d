#ifndef KVL_FOUNDATION_DESCRIPTOR_H
#define KVL_FOUNDATION_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace kvl {

/// Owns a file descriptor and closes it exactly once.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int number() const { return number_; }
    int release() { return std::exchange(number_, -1); }
    void close() {
        const int number = release();
        if (number >= 0) {
            ::close(number);
        }
    }

private:
    int number_;
};

}  // namespace kvl

#endif
