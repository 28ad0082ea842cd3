// A script engine that keeps every source it is given and answers each Execute
// with the error the test sets. Installed as the platform's script factory for
// the life of the object.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ScriptEngine.h"

class RecordingScriptEngine {
  public:
    RecordingScriptEngine() {
        platform::InstallScriptEngineFactory([this] { return std::make_unique<Script>(*this); });
    }
    ~RecordingScriptEngine() { platform::InstallScriptEngineFactory({}); }
    RecordingScriptEngine(const RecordingScriptEngine&) = delete;
    RecordingScriptEngine& operator=(const RecordingScriptEngine&) = delete;

    // Each source in the order Compile saw it.
    std::vector<std::string> compiled;
    // Each Execute, as the source it ran.
    std::vector<std::string> executed;
    // What Error reports after Execute; nullopt for success.
    std::optional<platform::ScriptError> error;

  private:
    class Script final : public platform::ScriptEngine {
      public:
        explicit Script(RecordingScriptEngine& owner) : owner_(owner) {}
        void Compile(const std::string& source) override {
            source_ = source;
            owner_.compiled.push_back(source);
        }
        void Execute() override {
            owner_.executed.push_back(source_);
            error_ = owner_.error;
        }
        const std::optional<platform::ScriptError>& Error() const override { return error_; }

      private:
        RecordingScriptEngine& owner_;
        std::string source_;
        std::optional<platform::ScriptError> error_;
    };
};
