#ifndef KVL_MACHINES_DESCRIPTOR_H
#define KVL_MACHINES_DESCRIPTOR_H

#include <string>

namespace kvl::machines {

/// Owns one file descriptor and closes it.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();

    int number() const { return number_; }
    void close();

private:
    int number_ = -1;
};

/// A file in memory that holds the text, closed at exec. Throws std::system_error if the system has none left.
Descriptor memoryFile(const std::string& text);

/// Everything that can be read from the descriptor, from where it stands to its end.
std::string readAll(int descriptor);

}  // namespace kvl::machines

#endif
