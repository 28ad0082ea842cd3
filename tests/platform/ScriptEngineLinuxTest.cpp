#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "fakes/ScopedEnvironment.h"
#include "fakes/TempFolder.h"
#include "platform/ScriptEngine.h"

namespace {

constexpr int64_t kCompileError = -2741;
constexpr int64_t kNotUnderstood = -1708;

std::string Script(const std::string& path, const std::string& verb) {
    return "tell application \"" + path + "\"\nactivate\n" + verb + "\nend tell";
}

// Runs source through the system's own engine; the error it ends with.
std::optional<platform::ScriptError> RunScript(const std::string& source) {
    const auto script = platform::NewScriptEngine();
    script->Compile(source);
    script->Execute();
    return script->Error();
}

// Waits a bounded while for a detached command to write its file.
std::string AwaitFile(const TempFolder& folder, const std::string& name) {
    for (int attempt = 0; attempt < 200; ++attempt) {
        if (std::string text = folder.ReadFile(name); !text.empty())
            return text;
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
    }
    return {};
}

TEST(ScriptEngineLinux, AcceptsOnlyTheFourLineShape) {
    struct Row {
        const char* what;
        std::string source;
        bool compiles;
    };
    const std::string good = Script("/x/app.desktop", "ShowSettings");
    const Row rows[] = {
        {"the shape", good, true},
        {"a path with spaces", Script("/my apps/app.desktop", "ShowSettings"), true},
        {"a line end behind the last line", good + "\n", false},
        {"carriage returns", "tell application \"/x\"\r\nactivate\r\nShowSettings\r\nend tell",
         false},
        {"three lines", "tell application \"/x\"\nactivate\nend tell", false},
        {"five lines", "tell application \"/x\"\nactivate\nA\nB\nend tell", false},
        {"an empty path", Script("", "ShowSettings"), false},
        {"no closing quote", "tell application \"/x\nactivate\nShowSettings\nend tell", false},
        {"indented", "tell application \"/x\"\n  activate\nShowSettings\nend tell", false},
        {"another second line", "tell application \"/x\"\nlaunch\nShowSettings\nend tell", false},
        {"an empty verb", Script("/x", ""), false},
        {"a verb with an argument", Script("/x", "ShowSettings now"), false},
        {"a quoted verb", Script("/x", "\"ShowSettings\""), false},
        {"another last line", "tell application \"/x\"\nactivate\nShowSettings\nend", false},
        {"nothing", "", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const auto script = platform::NewScriptEngine();
        script->Compile(row.source);
        if (row.compiles) {
            EXPECT_FALSE(script->Error().has_value());
            continue;
        }
        ASSERT_TRUE(script->Error().has_value());
        EXPECT_TRUE(script->Error()->ErrorCodeAvailable);
        EXPECT_EQ(script->Error()->Errorcode, kCompileError);
        EXPECT_FALSE(script->Error()->Message.empty());
        // Running what did not compile keeps the compile error.
        script->Execute();
        ASSERT_TRUE(script->Error().has_value());
        EXPECT_EQ(script->Error()->Errorcode, kCompileError);
    }
}

TEST(ScriptEngineLinux, StartsTheDesktopActionDetached) {
    TempFolder folder;
    // Field codes go, "%%" stands for one "%".
    folder.WriteFile("app.desktop",
                     "[Desktop Entry]\nType=Application\nName=Larkfen\nExec=larkfen %U\n\n"
                     "[Desktop Action ShowSettings]\nName=Settings\nExec=sh -c \"echo 100%% "
                     "$0 > '" +
                         folder / "out" + "'\" %f %U\n");
    EXPECT_FALSE(RunScript(Script(folder / "app.desktop", "ShowSettings")).has_value());
    EXPECT_EQ(AwaitFile(folder, "out"), "100% sh\n");
}

TEST(ScriptEngineLinux, FailuresCarryACodeAndAMessage) {
    TempFolder folder;
    const std::string plain = "[Desktop Entry]\nType=Application\nName=Larkfen\nExec=larkfen\n";
    folder.WriteFile("plain.desktop", plain);
    folder.WriteFile("unstartable.desktop",
                     plain + "\n[Desktop Action ScanScheduled]\nExec=/nonexistent/larkfen\n");
    folder.WriteFile("unparsable.desktop",
                     plain + "\n[Desktop Action ScanScheduled]\nExec=larkfen \"open\n");
    folder.WriteFile("bus.desktop", plain + "DBusActivatable=true\n");
    ScopedEnvironment environment;
    environment.Set("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder / "no-bus");

    const auto unknownVerb = RunScript(Script(folder / "plain.desktop", "ScanScheduled"));
    ASSERT_TRUE(unknownVerb.has_value());
    EXPECT_EQ(unknownVerb->Errorcode, kNotUnderstood);
    EXPECT_NE(unknownVerb->Message.find("\"ScanScheduled\""), std::string::npos)
        << unknownVerb->Message;

    for (const char* entry :
         {"missing.desktop", "unstartable.desktop", "unparsable.desktop", "bus.desktop"}) {
        SCOPED_TRACE(entry);
        const auto error = RunScript(Script(folder / entry, "ScanScheduled"));
        ASSERT_TRUE(error.has_value());
        EXPECT_TRUE(error->ErrorCodeAvailable);
        EXPECT_NE(error->Errorcode, 0);
        EXPECT_NE(error->Errorcode, kNotUnderstood);
        EXPECT_FALSE(error->Message.empty());
    }
}

}  // namespace
