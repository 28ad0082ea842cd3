#include "platform/DesktopEntry.h"

#include <glib.h>

#include <memory>
#include <string_view>

namespace platform {

namespace {

constexpr const char* kMainGroup = "Desktop Entry";
constexpr std::string_view kActionGroupPrefix = "Desktop Action ";

struct KeyFileDeleter {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileDeleter>;

std::string TakeString(gchar* value) {
    std::string text = value != nullptr ? value : "";
    g_free(value);
    return text;
}

std::string StringKey(GKeyFile* file, const char* group, const char* key) {
    return TakeString(g_key_file_get_string(file, group, key, nullptr));
}

bool BooleanKey(GKeyFile* file, const char* key) {
    return g_key_file_get_boolean(file, kMainGroup, key, nullptr) != FALSE;
}

std::string IdOf(const std::string& path) {
    std::string name = path.substr(path.find_last_of('/') + 1);
    constexpr std::string_view kSuffix = ".desktop";
    if (name.size() > kSuffix.size() && name.ends_with(kSuffix)) {
        name.resize(name.size() - kSuffix.size());
    }
    return name;
}

}  // namespace

std::optional<DesktopEntry> ReadDesktopEntry(const std::string& path) {
    KeyFile file(g_key_file_new());
    if (!g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_NONE, nullptr) ||
        !g_key_file_has_group(file.get(), kMainGroup)) {
        return std::nullopt;
    }
    DesktopEntry entry;
    entry.id = IdOf(path);
    entry.type = StringKey(file.get(), kMainGroup, "Type");
    entry.name =
        TakeString(g_key_file_get_locale_string(file.get(), kMainGroup, "Name", nullptr, nullptr));
    entry.exec = StringKey(file.get(), kMainGroup, "Exec");
    entry.hidden = BooleanKey(file.get(), "Hidden");
    entry.dbusActivatable = BooleanKey(file.get(), "DBusActivatable");
    gchar** groups = g_key_file_get_groups(file.get(), nullptr);
    for (gchar** group = groups; group != nullptr && *group != nullptr; ++group) {
        const std::string_view groupName(*group);
        if (groupName.starts_with(kActionGroupPrefix)) {
            entry.actionExec[std::string(groupName.substr(kActionGroupPrefix.size()))] =
                StringKey(file.get(), *group, "Exec");
        }
    }
    g_strfreev(groups);
    return entry;
}

}  // namespace platform
