#ifndef KVL_ADAPTER_UPDATE_MARKS_H
#define KVL_ADAPTER_UPDATE_MARKS_H

#include <array>

// For providers too: constants, and functions that use only their arguments. Any thread may call; nothing blocks.

namespace kvl {

/// A kind of update that can be marked. Its number is its place in the table, from 1 on.
struct UpdateMark {
    const char* text;
    const char* file;  ///< In the working tree.
};

constexpr std::array<UpdateMark, 3> kUpdateMarks = {{
    {"NIC", "temp/SequentialUpdateFile_NIC.txt"},
    {"FCoE", "temp/SequentialUpdateFile_FCoE.txt"},
    {"iSCSI", "temp/SequentialUpdateFile_iSCSI.txt"},
}};

}  // namespace kvl

#endif
