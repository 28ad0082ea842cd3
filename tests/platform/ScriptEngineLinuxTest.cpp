// Delivery that works, by desktop action and over the bus, is run end to end;
// these cover the script's shape, the action's command line and the failures.
#include <gtest/gtest.h>

#include <chrono>
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

TEST(ScriptEngineLinux, StartsTheDesktopActionDetached) {
    TempFolder folder;
    // Field codes go, "%%" stands for one "%".
    folder.WriteFile("app.desktop",
                     "[Desktop Entry]\nType=Application\nName=Larkfen\nExec=larkfen %U\n\n"
                     "[Desktop Action ShowSettings]\nName=Settings\nExec=sh -c \"echo 100%% "
                     "$0 > '" +
                         folder / "out" + "'\" %f %U\n");
    const auto script = platform::NewScriptEngine();
    script->Compile(Script(folder / "app.desktop", "ShowSettings"));
    script->Execute();
    EXPECT_FALSE(script->Error().has_value());
    // The command runs detached: wait a bounded while for its file.
    std::string out;
    for (int attempt = 0; attempt < 200 && out.empty(); ++attempt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
        out = folder.ReadFile("out");
    }
    EXPECT_EQ(out, "100% sh\n");
}

TEST(ScriptEngineLinux, EveryFailureCarriesACodeAndAMessage) {
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

    enum Failure { kShape, kVerb, kUnreachable };
    struct Row {
        const char* what;
        std::string source;
        Failure failure;
    };
    const std::string good = Script(folder / "plain.desktop", "ScanScheduled");
    const Row rows[] = {
        {"a line end behind the last line", good + "\n", kShape},
        {"carriage returns", "tell application \"/x\"\r\nactivate\r\nShowSettings\r\nend tell",
         kShape},
        {"three lines", "tell application \"/x\"\nactivate\nend tell", kShape},
        {"an empty path", Script("", "ShowSettings"), kShape},
        {"no closing quote", "tell application \"/x\nactivate\nShowSettings\nend tell", kShape},
        {"indented", "tell application \"/x\"\n  activate\nShowSettings\nend tell", kShape},
        {"an empty verb", Script("/x", ""), kShape},
        {"a verb with an argument", Script("/x", "ShowSettings now"), kShape},
        {"a quoted verb", Script("/x", "\"ShowSettings\""), kShape},
        {"another last line", "tell application \"/x\"\nactivate\nShowSettings\nend", kShape},
        // Of the right shape, so they compile.
        {"a verb the companion lacks", good, kVerb},
        {"no entry at a path with spaces", Script(folder / "my apps/x.desktop", "A"), kUnreachable},
        {"an action that cannot start", Script(folder / "unstartable.desktop", "ScanScheduled"),
         kUnreachable},
        {"an action that does not parse", Script(folder / "unparsable.desktop", "ScanScheduled"),
         kUnreachable},
        {"no session bus", Script(folder / "bus.desktop", "ScanScheduled"), kUnreachable},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const auto script = platform::NewScriptEngine();
        script->Compile(row.source);
        EXPECT_EQ(script->Error().has_value(), row.failure == kShape);
        script->Execute();  // what did not compile keeps its compile error
        const auto& error = script->Error();
        ASSERT_TRUE(error.has_value());
        EXPECT_TRUE(error->ErrorCodeAvailable);
        EXPECT_NE(error->Errorcode, 0);
        EXPECT_EQ(error->Errorcode == kCompileError, row.failure == kShape);
        EXPECT_EQ(error->Errorcode == kNotUnderstood, row.failure == kVerb);
        EXPECT_FALSE(error->Message.empty());
    }
}

}  // namespace
