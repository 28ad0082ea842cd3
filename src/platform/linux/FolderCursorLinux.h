// Listing folders with raw getdents64: one pass over each folder, the entry's type
// taken from the listing, no stat unless asked for.
#pragma once

#include <memory>
#include <string>

#include "platform/FileSystem.h"

namespace platform {

// A cursor on the folder at path (a link is refused with ENOTDIR); nullptr with
// error set when the folder cannot be opened.
std::unique_ptr<FolderCursor> OpenFolderCursorLinux(const std::string& path, int& error);

}  // namespace platform
