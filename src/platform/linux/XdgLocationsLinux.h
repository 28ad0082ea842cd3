// The user's folders as the XDG base-directory and user-dirs conventions name
// them. The variables and files are read at each call: they may change while the
// process runs, and GLib's own helpers keep the first answer for good.
#pragma once

#include <string>
#include <string_view>

namespace platform::xdg {

// $HOME when it is an absolute path, else the home of the user's account; empty
// when there is neither.
std::string HomeFolder();
// $XDG_DATA_HOME when it is an absolute path, else ~/.local/share; empty without a home.
std::string DataHome();
// $XDG_CONFIG_HOME when it is an absolute path, else ~/.config; empty without a home.
std::string ConfigHome();
// The folder that user-dirs.dirs names as XDG_<name>_DIR (name as "DESKTOP"); empty
// when the file is missing or names none.
std::string UserDirectory(std::string_view name);

// The user's own Trash: $XDG_DATA_HOME/Trash/files; empty without a home.
std::string UserTrashFolder();
// The Trash of the volume at root: root/.Trash/<uid>/files when root/.Trash is a
// real sticky folder holding it, else root/.Trash-<uid>/files when that is a folder;
// empty when the volume has neither.
std::string VolumeTrashFolder(const std::string& root);
// The XDG desktop directory, else ~/Desktop; empty without a home. Never created.
std::string DesktopFolder();

}  // namespace platform::xdg
