// Reading freedesktop desktop entries (*.desktop): what the agent needs to tell
// an application, name it, and find and reach the companion.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace platform {

struct DesktopEntry {
    std::string id;    // the desktop-file ID: the file name less ".desktop"
    std::string type;  // Type=, e.g. "Application"
    std::string name;  // Name=, in the user's language where the entry has it
    std::string exec;  // Exec=, as written
    bool hidden = false;
    bool dbusActivatable = false;
    // Exec= of each [Desktop Action <name>] group, by action name.
    std::map<std::string, std::string> actionExec;
};

// The [Desktop Entry] group of the file at path; nullopt when the file cannot be
// read, is no key file, or has no such group. Never throws.
std::optional<DesktopEntry> ReadDesktopEntry(const std::string& path);

}  // namespace platform
