#include "platform/linux/XdgLocationsLinux.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <vector>

#include "platform/FileSystem.h"

namespace platform::xdg {

namespace {

constexpr std::string_view kHomeVariable = "$HOME";
constexpr const char* kUserDirsFile = "user-dirs.dirs";
constexpr const char* kDesktopKey = "DESKTOP";
constexpr const char* kDefaultDesktop = "Desktop";
constexpr const char* kTrashFiles = "Trash/files";

// The variable's value when it holds an absolute path: the conventions say a
// relative one is invalid and to be ignored.
std::string AbsoluteVariable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && value[0] == '/' ? std::string(value) : std::string();
}

std::string AccountHome() {
    const long suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<size_t>(suggested) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 ||
        found == nullptr || found->pw_dir == nullptr) {
        return {};
    }
    return found->pw_dir;
}

std::string UnderHome(const char* variable, const char* fallback) {
    std::string folder = AbsoluteVariable(variable);
    if (!folder.empty())
        return folder;
    const std::string home = HomeFolder();
    return home.empty() ? std::string() : ChildPath(home, fallback);
}

std::string_view SkipBlanks(std::string_view text) {
    const size_t start = text.find_first_not_of(" \t");
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

// One line of user-dirs.dirs, written by xdg-user-dirs-update as
//   XDG_DESKTOP_DIR="$HOME/Desktop"
// The value is "$HOME" with an optional "/..." after it, or an absolute path; a
// backslash takes the next character as it stands. Gives nullopt for a line of
// another folder, a comment, or a value of another form.
std::optional<std::string> ParseUserDirLine(std::string_view line, std::string_view key,
                                            const std::string& home) {
    line = SkipBlanks(line);
    if (!line.starts_with(key))
        return std::nullopt;
    line = SkipBlanks(line.substr(key.size()));
    if (!line.starts_with('='))
        return std::nullopt;
    line = SkipBlanks(line.substr(1));
    if (!line.starts_with('"'))
        return std::nullopt;
    line.remove_prefix(1);
    std::string folder;
    if (line.starts_with(kHomeVariable) &&
        (line.size() == kHomeVariable.size() || line[kHomeVariable.size()] == '/' ||
         line[kHomeVariable.size()] == '"')) {
        if (home.empty())
            return std::nullopt;
        folder = home;
        line.remove_prefix(kHomeVariable.size());
    } else if (!line.starts_with('/')) {
        return std::nullopt;
    }
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') {
            while (folder.size() > 1 && folder.back() == '/')
                folder.pop_back();
            return folder;
        }
        if (line[i] == '\\' && i + 1 < line.size())
            ++i;
        folder.push_back(line[i]);
    }
    return std::nullopt;  // no closing quotation mark
}

bool IsRealFolder(const std::string& path, bool mustBeSticky = false) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) &&
           (!mustBeSticky || (info.st_mode & S_ISVTX) != 0);
}

}  // namespace

std::string HomeFolder() {
    std::string home = AbsoluteVariable("HOME");
    return home.empty() ? AccountHome() : home;
}

std::string DataHome() {
    return UnderHome("XDG_DATA_HOME", ".local/share");
}

std::string ConfigHome() {
    return UnderHome("XDG_CONFIG_HOME", ".config");
}

std::string UserDirectory(std::string_view name) {
    const std::string config = ConfigHome();
    if (config.empty())
        return {};
    std::ifstream file(ChildPath(config, kUserDirsFile));
    const std::string key = "XDG_" + std::string(name) + "_DIR";
    const std::string home = HomeFolder();
    std::string folder;
    // A later line for the same folder overrides an earlier one.
    for (std::string line; std::getline(file, line);) {
        if (auto parsed = ParseUserDirLine(line, key, home))
            folder = std::move(*parsed);
    }
    return folder;
}

std::string UserTrashFolder() {
    const std::string data = DataHome();
    return data.empty() ? std::string() : ChildPath(data, kTrashFiles);
}

std::string VolumeTrashFolder(const std::string& root) {
    const std::string uid = std::to_string(getuid());
    // The shared .Trash must be a sticky folder and no link, or another user could
    // have planted it.
    const std::string shared = ChildPath(root, ".Trash");
    if (IsRealFolder(shared, /*mustBeSticky=*/true)) {
        std::string files = ChildPath(ChildPath(shared, uid), "files");
        if (IsRealFolder(files))
            return files;
    }
    std::string own = ChildPath(ChildPath(root, ".Trash-" + uid), "files");
    return IsRealFolder(own) ? own : std::string();
}

std::string DesktopFolder() {
    std::string desktop = UserDirectory(kDesktopKey);
    if (!desktop.empty())
        return desktop;
    const std::string home = HomeFolder();
    return home.empty() ? std::string() : ChildPath(home, kDefaultDesktop);
}

}  // namespace platform::xdg
