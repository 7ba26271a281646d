#ifndef KVL_FOUNDATION_EXIT_STATUS_H
#define KVL_FOUNDATION_EXIT_STATUS_H

namespace kvl {

/// @param status  what `system` returned
/// @return true if the command could not be run or exited with a status other than 0. One that a signal ended did
///         neither
inline bool exitedWithFailure(int status) {
    return status < 0 || ((status >> 8) & 0xff) != 0;
}

}  // namespace kvl

#endif
