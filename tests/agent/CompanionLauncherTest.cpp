// That every command reaches a real companion, and the script's text, are the
// end-to-end tests' business; these cover what the launcher logs and leaves undone.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "agent/App.h"
#include "fakes/RecordingLog.h"
#include "fakes/RecordingScriptEngine.h"
#include "fakes/ScopedEnvironment.h"
#include "fakes/TempFolder.h"

namespace {

constexpr const char* kNotFound = "Failed to launch Larkfen as it could not be found!";
constexpr const char* kUnknown = "Failed to launch Larkfen due to an unknown argument.";
// A data folder whose name would need escaping anywhere but between the script's quotes.
constexpr const char* kOddFolder = "dirs with \"quotes\" and \\slashes";

// An App whose companion is (or is not) installed in a data folder of its own, with
// the script engine and the log recorded.
class Launcher : public testing::Test {
  protected:
    Launcher() {
        environment_.Set("XDG_DATA_HOME", data_ / "home");
        environment_.Set("XDG_DATA_DIRS", data_ / kOddFolder);
    }

    // Installs the companion's desktop entry; returns its path.
    std::string InstallCompanion() {
        const std::string entry =
            std::string(kOddFolder) + "/applications/com.ombrastel.larkfen.desktop";
        data_.WriteFile(entry, "[Desktop Entry]\nType=Application\nName=Larkfen\nExec=larkfen\n");
        return data_ / entry;
    }

    TempFolder data_;
    ScopedEnvironment environment_;
    RecordingLog log_;
    RecordingScriptEngine scripts_;
    App app_;
};

TEST_F(Launcher, RunsNoScriptWithoutTheCompanionOrForAnUnknownCommand) {
    struct Row {
        bool installed;
        int64_t command;
        const char* logged;
    };
    // The companion is looked for before the command, and afresh at each call.
    const Row rows[] = {
        {false, 4, kNotFound}, {false, 9, kNotFound}, {true, 0, kUnknown},
        {true, 6, kUnknown},   {true, -1, kUnknown},  {true, int64_t{1} << 40, kUnknown},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE((row.installed ? "installed, command " : "missing, command ") +
                     std::to_string(row.command));
        if (row.installed)
            InstallCompanion();
        log_.entries.clear();
        app_.ShowCleanerAppWithCommand(row.command);
        EXPECT_EQ(log_.entries, std::vector<std::string>{row.logged});
    }
    EXPECT_TRUE(scripts_.compiled.empty());
}

TEST_F(Launcher, LogsOnlyARealScriptError) {
    struct Row {
        const char* what;
        std::optional<platform::ScriptError> error;
        bool logged;
    };
    const Row rows[] = {
        {"no error object", std::nullopt, false},
        {"code 0", platform::ScriptError{true, 0, "it broke"}, false},
        {"no code, \"no error\"", platform::ScriptError{false, 0, "no error"}, false},
        {"no code, other capitals inside a longer message",
         platform::ScriptError{false, -1, "There was No Error at all."}, false},
        {"a code and \"no error\"", platform::ScriptError{true, -1708, "no error here"}, false},
        {"no code and a message", platform::ScriptError{false, 0, "it broke"}, true},
        {"a code and an empty message", platform::ScriptError{true, -600, ""}, true},
    };
    // The path stands in the logged script as it is, quotes and backslashes unescaped.
    const std::string script =
        "tell application \"" + InstallCompanion() + "\"\nactivate\nShowSettings\nend tell";
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        log_.entries.clear();
        scripts_.error = row.error;
        app_.ShowCleanerAppWithCommand(2);
        if (!row.logged) {
            EXPECT_TRUE(log_.entries.empty());
            continue;
        }
        EXPECT_EQ(log_.entries,
                  (std::vector<std::string>{"AppleScript Error: " + row.error->Message,
                                            "AppleScript Code:", script}));
    }
}

}  // namespace
