// An application is its desktop entry. The entry "<bundleID>.desktop" is looked
// for in $XDG_DATA_HOME/applications, then in each $XDG_DATA_DIRS/applications,
// the first found winning; failing that, an entry there whose Name is the name.
// An entry with Hidden=true counts as absent. The folders are read at each call
// (GIO's own lookup keeps what it found first for the life of the process).
#include "platform/ApplicationFinder.h"

#include <dirent.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/DesktopEntry.h"
#include "platform/linux/XdgLocationsLinux.h"

namespace platform {

namespace {

std::vector<std::string> ApplicationFolders() {
    std::vector<std::string> folders;
    if (const std::string home = xdg::DataHome(); !home.empty()) {
        folders.push_back(home + "/applications");
    }
    const char* dirs = std::getenv("XDG_DATA_DIRS");
    std::string list = dirs != nullptr && *dirs != '\0' ? dirs : "/usr/local/share:/usr/share";
    for (size_t from = 0; from <= list.size();) {
        const size_t colon = std::min(list.find(':', from), list.size());
        const std::string folder = list.substr(from, colon - from);
        if (!folder.empty() && folder[0] == '/')
            folders.push_back(folder + "/applications");
        from = colon + 1;
    }
    return folders;
}

bool Usable(const std::optional<DesktopEntry>& entry) {
    return entry && !entry->hidden && entry->type == "Application";
}

std::string ChildPath(const std::string& folder, const std::string& file) {
    std::string path = folder;
    path += '/';
    path += file;
    return path;
}

std::optional<std::string> FindByName(const std::string& folder, const std::string& name) {
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(folder.c_str()), closedir);
    if (listing == nullptr)
        return std::nullopt;
    // In name order, so that of two entries with that name the same one wins every time.
    std::vector<std::string> files;
    while (const dirent* entry = readdir(listing.get())) {
        if (std::string file = entry->d_name; file.ends_with(".desktop"))
            files.push_back(std::move(file));
    }
    std::sort(files.begin(), files.end());
    for (const std::string& file : files) {
        std::string path = ChildPath(folder, file);
        const auto desktopEntry = ReadDesktopEntry(path);
        if (Usable(desktopEntry) && desktopEntry->name == name)
            return path;
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> LaunchServicesFindApplicationForInfoMBS(const std::string& /*creator*/,
                                                                   const std::string& bundleID,
                                                                   const std::string& name) {
    const std::vector<std::string> folders = ApplicationFolders();
    if (!bundleID.empty()) {
        for (const std::string& folder : folders) {
            std::string path = ChildPath(folder, bundleID + ".desktop");
            if (Usable(ReadDesktopEntry(path)))
                return path;
        }
    }
    if (!name.empty()) {
        for (const std::string& folder : folders) {
            if (auto path = FindByName(folder, name))
                return path;
        }
    }
    return std::nullopt;
}

}  // namespace platform
