#include "runtime/SpecialFolder.h"

#include <string>
#include <utility>

#include "platform/FileSystem.h"

namespace SpecialFolder {

namespace {

// A location may itself be a link to the real folder (a desktop kept on another
// disk); the item names the folder, so that it lists and measures as one.
std::shared_ptr<FolderItem> Location(std::string path) {
    if (path.empty())
        return nullptr;
    std::string target = platform::CurrentFileSystem().ResolveLink(path);
    return std::make_shared<FolderItem>(target.empty() ? std::move(path) : std::move(target));
}

}  // namespace

std::shared_ptr<FolderItem> Trash(const std::shared_ptr<FolderItem>& volume) {
    return Location(
        platform::CurrentFileSystem().TrashFolder(volume ? volume->NativePath() : std::string()));
}

std::shared_ptr<FolderItem> Desktop() {
    return Location(platform::CurrentFileSystem().DesktopFolder());
}

}  // namespace SpecialFolder
