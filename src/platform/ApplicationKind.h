// What makes an item in the file system an application on this system.
#pragma once

#include <string>

namespace platform {

enum class ApplicationKind {
    kNone,    // no application
    kBundle,  // a folder "*.app" holding Contents/Info.plist (a macOS bundle on a shared disk)
    kDesktopEntry,  // a "*.desktop" file whose [Desktop Entry] has Type=Application
    kAppImage,      // a regular file with the AppImage magic bytes at offset 8
};

// The kind of application at path, links not followed; kNone for anything else,
// and when the item cannot be read. Never throws.
ApplicationKind KindOfApplication(const std::string& path);

// Where a bundle keeps its information dictionary.
std::string BundleInfoPath(const std::string& bundlePath);

}  // namespace platform
