// A temporary XDG_CONFIG_HOME for the life of the object.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "fakes/TempFolder.h"

class ConfigHome {
  public:
    ConfigHome() {
        if (const char* old = std::getenv("XDG_CONFIG_HOME"))
            previous_ = old;
        setenv("XDG_CONFIG_HOME", folder_.Path().c_str(), 1);
    }
    ~ConfigHome() {
        if (previous_) {
            setenv("XDG_CONFIG_HOME", previous_->c_str(), 1);
        } else {
            unsetenv("XDG_CONFIG_HOME");
        }
    }
    ConfigHome(const ConfigHome&) = delete;
    ConfigHome& operator=(const ConfigHome&) = delete;

    const std::string& Path() const { return folder_.Path(); }
    std::string Domain(const std::string& name) const { return Path() + "/" + name + ".plist"; }

  private:
    TempFolder folder_;
    std::optional<std::string> previous_;
};
