// The name a user sees for an item: what a desktop entry calls itself, what a
// trashed item was called before it went to the Trash, else the name on disk.
#pragma once

#include <string>

namespace platform {

// Name= of a readable *.desktop file; for an item in a Trash's "files" folder, the
// base name of Path= in the Trash's info/<name>.trashinfo, percent-decoded; else
// the name on disk. Never fails.
std::string DisplayNameLinux(const std::string& path);

}  // namespace platform
