// A temporary XDG_CONFIG_HOME for the life of the object.
#pragma once

#include <string>

#include "fakes/ScopedEnvironment.h"
#include "fakes/TempFolder.h"

class ConfigHome {
  public:
    ConfigHome() { environment_.Set("XDG_CONFIG_HOME", folder_.Path()); }

    const std::string& Path() const { return folder_.Path(); }
    std::string Domain(const std::string& name) const { return Path() + "/" + name + ".plist"; }

  private:
    TempFolder folder_;
    ScopedEnvironment environment_;
};
