#include "platform/linux/DisplayNameLinux.h"

#include <glib.h>

#include <memory>
#include <string_view>

#include "platform/DesktopEntry.h"
#include "platform/FileSystem.h"

namespace platform {

namespace {

constexpr std::string_view kDesktopSuffix = ".desktop";
constexpr std::string_view kTrashFilesFolder = "files";
constexpr const char* kTrashInfoFolder = "info";
constexpr const char* kTrashInfoSuffix = ".trashinfo";
constexpr const char* kTrashInfoGroup = "Trash Info";
constexpr const char* kTrashInfoPath = "Path";

struct KeyFileDeleter {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
struct GFreeDeleter {
    void operator()(gchar* text) const { g_free(text); }
};
using GText = std::unique_ptr<gchar, GFreeDeleter>;

// The folder that holds the item at path; empty for a path of one component.
std::string_view ParentOf(std::string_view path) {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    const size_t slash = path.rfind('/');
    if (slash == std::string_view::npos)
        return {};
    return slash == 0 ? path.substr(0, 1) : path.substr(0, slash);
}

// The name the item had before it was trashed, from the freedesktop Trash's
// record beside it; empty when the item is in no Trash or the record is unusable.
std::string TrashedName(const std::string& path, std::string_view name) {
    const std::string_view files = ParentOf(path);
    if (BaseName(files) != kTrashFilesFolder)
        return {};
    const std::string info = ChildPath(ChildPath(ParentOf(files), kTrashInfoFolder),
                                       std::string(name) + kTrashInfoSuffix);
    std::unique_ptr<GKeyFile, KeyFileDeleter> file(g_key_file_new());
    if (!g_key_file_load_from_file(file.get(), info.c_str(), G_KEY_FILE_NONE, nullptr))
        return {};
    // The raw value: Path= is percent-encoded, not key-file escaped.
    const GText encoded(g_key_file_get_value(file.get(), kTrashInfoGroup, kTrashInfoPath, nullptr));
    if (encoded == nullptr)
        return {};
    const GText decoded(g_uri_unescape_string(encoded.get(), nullptr));
    if (decoded == nullptr)
        return {};  // a broken escape, or one that decodes to NUL
    return std::string(BaseName(decoded.get()));
}

}  // namespace

std::string DisplayNameLinux(const std::string& path) {
    const std::string_view name = BaseName(path);
    if (name.size() > kDesktopSuffix.size() && name.ends_with(kDesktopSuffix)) {
        if (const auto entry = ReadDesktopEntry(path); entry && !entry->name.empty()) {
            return entry->name;
        }
    }
    if (std::string trashed = TrashedName(path, name); !trashed.empty() && trashed != "/") {
        return trashed;
    }
    return std::string(name);
}

}  // namespace platform
