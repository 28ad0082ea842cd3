// SpecialFolder: the user's shared locations, each given as a new FolderItem that
// may not exist yet. The locations are looked up at each call.
#pragma once

#include <memory>

#include "runtime/FolderItem.h"

namespace SpecialFolder {

// The Trash's folder of trashed items: the user's own for a nil volume, else that
// of the volume whose root is given. Nil when there is none (no home, or a volume
// without a Trash); the user's own may not exist yet.
std::shared_ptr<FolderItem> Trash(const std::shared_ptr<FolderItem>& volume = nullptr);
// The user's desktop folder, whether it exists or not (it is never created); nil
// when the user has no home.
std::shared_ptr<FolderItem> Desktop();

}  // namespace SpecialFolder
