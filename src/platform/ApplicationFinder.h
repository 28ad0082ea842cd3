// Finding an installed application.
#pragma once

#include <optional>
#include <string>

namespace platform {

// The installed application with that bundle identifier, or else that name, as
// the path of the item that stands for it; nullopt when there is none. The
// creator code is a macOS notion and not looked at here. Never throws.
std::optional<std::string> LaunchServicesFindApplicationForInfoMBS(const std::string& creator,
                                                                   const std::string& bundleID,
                                                                   const std::string& name);

}  // namespace platform
