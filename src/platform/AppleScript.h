// The one-way command channel to the companion: a script names the application
// by path and the command to hand it. Abstract so that tests can read the script.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace platform {

struct AppleScriptError {
    bool ErrorCodeAvailable = true;
    int64_t Errorcode = 0;
    std::string Message;
};

class AppleScript {
  public:
    virtual ~AppleScript() = default;
    virtual void Compile(const std::string& source) = 0;
    // Runs what Compile made of the source; Error tells the outcome of both.
    virtual void Execute() = 0;
    // The failure of the last Compile or Execute; nullopt when there was none.
    virtual const std::optional<AppleScriptError>& Error() const = 0;
};

// A new script object: the installed factory's, else the platform's.
std::unique_ptr<AppleScript> NewAppleScript();
// Replaces the factory; an empty one (nullptr) restores the platform's own.
void InstallAppleScriptFactory(std::function<std::unique_ptr<AppleScript>()> factory);

}  // namespace platform
