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

constexpr const char* kEntryName = "applications/com.ombrastel.larkfen.desktop";
constexpr const char* kNotFound = "Failed to launch Larkfen as it could not be found!";

// An App whose companion is (or is not) installed in a data folder of its own, with
// the script engine and the log recorded.
class Launcher : public testing::Test {
  protected:
    Launcher() {
        environment_.Set("XDG_DATA_HOME", data_ / "home");
        environment_.Set("XDG_DATA_DIRS", data_ / "dirs");
    }

    // Installs the companion's desktop entry; returns its path.
    std::string InstallCompanion(const std::string& folder = "home") {
        data_.WriteFile(folder + "/" + kEntryName,
                        "[Desktop Entry]\nType=Application\nName=Larkfen\nExec=larkfen\n");
        return data_ / (folder + "/" + kEntryName);
    }

    static std::string Script(const std::string& path, const std::string& verb) {
        return "tell application \"" + path + "\"\nactivate\n" + verb + "\nend tell";
    }

    TempFolder data_;
    ScopedEnvironment environment_;
    RecordingLog log_;
    RecordingScriptEngine scripts_;
    App app_;
};

TEST_F(Launcher, BuildsTheScriptForEachCommand) {
    const std::string path = InstallCompanion();
    const std::vector<std::string> verbs{"SecureEmptyTrash", "ShowSettings", "UninstallTrashedApps",
                                         "ScanScheduled", "ScanFromSettings"};
    for (int64_t command = 1; command <= 5; ++command)
        app_.ShowCleanerAppWithCommand(command);
    ASSERT_EQ(scripts_.compiled.size(), verbs.size());
    for (size_t i = 0; i < verbs.size(); ++i) {
        SCOPED_TRACE("command " + std::to_string(i + 1));
        // Four lines, no indentation, no line end behind the last.
        EXPECT_EQ(scripts_.compiled[i], Script(path, verbs[i]));
    }
    EXPECT_EQ(scripts_.executed, scripts_.compiled);
    EXPECT_TRUE(log_.entries.empty());
}

TEST_F(Launcher, PathStandsUnescapedBetweenTheQuotes) {
    // A companion installed under an odd folder name reaches the script as it stands.
    const std::string folder = "dirs with \"quotes\" and \\slashes";
    environment_.Set("XDG_DATA_DIRS", data_ / folder);
    const std::string path = InstallCompanion(folder);
    app_.ShowCleanerAppWithCommand(4);
    ASSERT_EQ(scripts_.compiled.size(), 1U);
    EXPECT_EQ(scripts_.compiled[0], Script(path, "ScanScheduled"));
}

TEST_F(Launcher, UnknownCommandRunsNoScript) {
    InstallCompanion();
    for (const int64_t command : std::vector<int64_t>{0, 6, -1, int64_t{1} << 40}) {
        SCOPED_TRACE("command " + std::to_string(command));
        log_.entries.clear();
        app_.ShowCleanerAppWithCommand(command);
        EXPECT_EQ(log_.entries,
                  std::vector<std::string>{"Failed to launch Larkfen due to an unknown argument."});
    }
    EXPECT_TRUE(scripts_.compiled.empty());
}

TEST_F(Launcher, MissingCompanionRunsNoScript) {
    EXPECT_EQ(app_.GetCleanerApp(), nullptr);
    EXPECT_EQ(log_.entries, std::vector<std::string>{kNotFound});
    log_.entries.clear();
    // The unknown number is not even looked at: the companion comes first.
    app_.ShowCleanerAppWithCommand(4);
    app_.ShowCleanerAppWithCommand(9);
    EXPECT_EQ(log_.entries, (std::vector<std::string>{kNotFound, kNotFound}));
    EXPECT_TRUE(scripts_.compiled.empty());
}

TEST_F(Launcher, FindsTheCompanionAfreshEachTime) {
    EXPECT_EQ(app_.GetCleanerApp(), nullptr);
    const std::string path = InstallCompanion("dirs");
    const auto found = app_.GetCleanerApp();
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->AbsolutePath(), path);
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
        {"a code and a message", platform::ScriptError{true, -1708, "it broke"}, true},
        {"no code and a message", platform::ScriptError{false, 0, "it broke"}, true},
        {"a code and an empty message", platform::ScriptError{true, -600, ""}, true},
    };
    const std::string path = InstallCompanion();
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
                                            "AppleScript Code:", Script(path, "ShowSettings")}));
    }
}

}  // namespace
