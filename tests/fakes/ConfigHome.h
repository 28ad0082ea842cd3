// A temporary folder that is XDG_CONFIG_HOME for the life of the object.
#pragma once

#include <string>

#include "fakes/ScopedEnvironment.h"
#include "fakes/TempFolder.h"

class ConfigHome : public TempFolder {
  public:
    ConfigHome() { environment_.Set("XDG_CONFIG_HOME", Path()); }

    std::string Domain(const std::string& name) const { return Path() + "/" + name + ".plist"; }

  private:
    ScopedEnvironment environment_;
};
