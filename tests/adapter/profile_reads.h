#ifndef KVL_TESTS_ADAPTER_PROFILE_READS_H
#define KVL_TESTS_ADAPTER_PROFILE_READS_H

#include <stdexcept>

#include "tests/support/test_host.h"

namespace kvl::test {

/// Ends a walk over a catalogue that would take too long for a test.
class EnoughReads : public std::runtime_error {
public:
    EnoughReads() : std::runtime_error("enough reads") {}
};

/// The texts that the library reads from INI files. This program supplies that host service itself and answers as the
/// reference host does.
struct ProfileReads {
    /// "PATH [SECTION] KEY" of each read, unless there is a limit.
    Lines reads;
    /// The default text, the size of the buffer, of the last read.
    std::string defaultText;
    unsigned long size = 0;
    /// How many reads are answered; the next raises EnoughReads. 0: all.
    unsigned long limit = 0;
    unsigned long count = 0;
    std::string lastKey;
};

ProfileReads& profile();

}  // namespace kvl::test

#endif
