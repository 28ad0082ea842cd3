// The platform's FileStatus from what stat(2) says.
#pragma once

#include <sys/stat.h>

#include <cstdint>

#include "platform/FileSystem.h"

namespace platform {

// A folder has no bytes of its own here: what a directory file occupies differs from
// one file system to the next and says nothing about what the folder holds. Linux
// files have no resource fork.
inline FileStatus FileStatusFromStat(const struct stat& info) {
    FileStatus status;
    status.isFolder = S_ISDIR(info.st_mode);
    status.length = status.isFolder ? 0 : static_cast<uint64_t>(info.st_size);
    return status;
}

inline FileStatus FileStatusFromError(int error) {
    FileStatus status;
    status.error = error;
    return status;
}

}  // namespace platform
