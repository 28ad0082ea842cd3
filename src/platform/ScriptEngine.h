// The one-way command channel to the companion: a script names the application
// by path and the command to hand it. Abstract so that tests can read the script.
// A script object serves one command, so what is installed is a factory.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace platform {

// Why a script did not compile or run. The code is negative, in the numbering
// scripting engines use (-2741 a script of another shape, -1708 a command the
// application does not understand).
struct ScriptError {
    bool ErrorCodeAvailable = true;
    int64_t Errorcode = 0;
    std::string Message;
};

class ScriptEngine {
  public:
    virtual ~ScriptEngine() = default;
    // Never throws; a source that cannot be compiled leaves its failure in Error.
    virtual void Compile(const std::string& source) = 0;
    // Runs what Compile made of the source and waits for the application to take
    // the command. Never throws; Error tells the outcome of both calls.
    virtual void Execute() = 0;
    // The failure of the last Compile or Execute; nullopt when there was none.
    virtual const std::optional<ScriptError>& Error() const = 0;
};

// A new script object: the installed factory's, else the platform's.
std::unique_ptr<ScriptEngine> NewScriptEngine();
// Replaces the factory; an empty one (nullptr) restores the platform's own.
void InstallScriptEngineFactory(std::function<std::unique_ptr<ScriptEngine>()> factory);

}  // namespace platform
