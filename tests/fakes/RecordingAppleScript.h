// A script engine that keeps every source it is given and answers each Execute
// with the error the test sets. Installed as the platform's script factory for
// the life of the object.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/AppleScript.h"

class RecordingAppleScript {
  public:
    RecordingAppleScript() {
        platform::InstallAppleScriptFactory([this] { return std::make_unique<Script>(*this); });
    }
    ~RecordingAppleScript() { platform::InstallAppleScriptFactory({}); }
    RecordingAppleScript(const RecordingAppleScript&) = delete;
    RecordingAppleScript& operator=(const RecordingAppleScript&) = delete;

    // Each source in the order Compile saw it.
    std::vector<std::string> compiled;
    // Each Execute, as the source it ran.
    std::vector<std::string> executed;
    // What Error reports after Execute; nullopt for success.
    std::optional<platform::AppleScriptError> error;

  private:
    class Script final : public platform::AppleScript {
      public:
        explicit Script(RecordingAppleScript& owner) : owner_(owner) {}
        void Compile(const std::string& source) override {
            source_ = source;
            owner_.compiled.push_back(source);
        }
        void Execute() override {
            owner_.executed.push_back(source_);
            error_ = owner_.error;
        }
        const std::optional<platform::AppleScriptError>& Error() const override { return error_; }

      private:
        RecordingAppleScript& owner_;
        std::string source_;
        std::optional<platform::AppleScriptError> error_;
    };
};
