// The built agent, run as the system runs it, in a sandbox of its own.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>

#include "e2e/Sandbox.h"
#include "platform/PropertyListFile.h"

namespace {

const std::vector<std::string> kAllVerbs{"SecureEmptyTrash", "ShowSettings", "UninstallTrashedApps",
                                         "ScanScheduled", "ScanFromSettings"};
constexpr const char* kCompanion = "com.ombrastel.larkfen";
constexpr const char* kSizeAlert = "Could not show wndAlertTrashSize: no display is available.";
constexpr const char* kUninstallAlert =
    "Could not show wndAlertTrashUninstall: no display is available.";
constexpr int64_t kMiB = 1024 * 1024;
constexpr int64_t kDay = 86400;

std::optional<platform::PropertyListValue> OwnKey(const Sandbox& sandbox, const std::string& key) {
    const auto domain = platform::ReadPropertyListFile(sandbox.OwnDomain());
    if (!domain)
        return std::nullopt;
    const auto* value = domain->Find(key);
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

bool Logged(const AgentRun& run, const std::string& line) {
    return std::find(run.log.begin(), run.log.end(), line) != run.log.end();
}

TEST(Agent, ExitPaths) {
    struct Row {
        std::vector<std::string> arguments;
        bool companion;
        bool trash;
        std::vector<std::string> log;  // "$0" stands for the program's path
        std::vector<std::string> verbs;
    };
    const std::string unhandled = "Unhandled or missing required arguments: ";
    const std::vector<Row> rows = {
        {{}, true, true, {unhandled, "$0"}, {}},
        {{"-bogus"}, true, true, {unhandled, "$0", "-bogus"}, {}},
        {{"-TrashChanged"},
         false,
         true,
         {"Failed to launch Larkfen as it could not be found!",
          "Failed to find Larkfen.app. Operation halted.", "Fresh reinstall recommended."},
         {}},
        {{"-TRASHCHANGED", "-Scheduler"},
         true,
         false,
         {"Failed to check Trash as folder was not found!"},
         {}},
        {{"-Scheduler", "-scheduler"}, true, true, {}, {"ScanScheduled", "ScanScheduled"}},
        {{"-Scheduler", "-Bogus"}, true, true, {}, {"ScanScheduled"}},
        {{"-TrashChanged", "-Scheduler"}, true, true, {}, {"ScanScheduled"}},
    };
    for (const Row& row : rows) {
        std::string name;
        for (const auto& argument : row.arguments)
            name += argument + " ";
        SCOPED_TRACE("arguments: " + name);
        Sandbox sandbox;
        if (row.companion)
            sandbox.InstallCompanion(kAllVerbs);
        if (!row.trash)
            std::filesystem::remove_all(sandbox.Trash());
        const AgentRun run = sandbox.Start(row.arguments);
        EXPECT_EQ(run.exitCode, 0);
        std::vector<std::string> expected = row.log;
        std::replace(expected.begin(), expected.end(), std::string("$0"),
                     std::string(LARKFEN_HELPER));
        EXPECT_EQ(run.log, expected);
        EXPECT_EQ(sandbox.Verbs(row.verbs.size()), row.verbs);
        // Without the companion nothing is looked at and nothing stored.
        if (!row.companion) {
            EXPECT_FALSE(OwnKey(sandbox, "TrashUninstallerHistory").has_value());
        }
    }
}

TEST(Agent, SizeWarningDecision) {
    struct Row {
        const char* what;
        int64_t trashBytes;
        std::optional<double> lastSize;
        std::optional<int64_t> lastWarnedSecondsAgo;
        bool alertWanted;
        bool warns;
    };
    const Row rows[] = {
        {"first run, 60 MiB", 60 * kMiB, {}, {}, true, true},
        {"first run, exactly the step", 50 * kMiB, {}, {}, true, false},
        {"grown by exactly the step", 150 * kMiB, 100.0 * kMiB, 3600, true, false},
        {"grown by the step and a byte", 150 * kMiB + 1, 100.0 * kMiB, 3600, true, true},
        {"grown, last warning 6 days ago", 200 * kMiB, 100.0 * kMiB, 6 * kDay, true, true},
        {"large, not grown, never warned", 120 * kMiB, 100.0 * kMiB, {}, true, false},
        {"grown, last warning 30 s ago", 200 * kMiB, 100.0 * kMiB, 30, true, false},
        {"emptied, large, 6 days old", 60 * kMiB, 1024.0 * kMiB, 6 * kDay, true, true},
        {"emptied, large, 4 days old", 60 * kMiB, 1024.0 * kMiB, 4 * kDay, true, false},
        {"small, 10 days old", 10 * kMiB, 0.0, 10 * kDay, true, false},
        {"alert switched off", 60 * kMiB, {}, {}, false, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Sandbox sandbox;
        sandbox.InstallCompanion(kAllVerbs);
        sandbox.WritePreferences(kCompanion,
                                 {{"AlertTrashFull", row.alertWanted ? "<true/>" : "<false/>"}});
        std::map<std::string, std::string> own;
        if (row.lastSize)
            own["TrashLastWarnSizeSize"] = "<real>" + std::to_string(*row.lastSize) + "</real>";
        if (row.lastWarnedSecondsAgo) {
            own["TrashLastWarnSizeTime"] =
                "<string>" + TimestampSecondsAgo(*row.lastWarnedSecondsAgo) + "</string>";
        }
        sandbox.WritePreferences("com.ombrastel.larkfenhelper", own);
        sandbox.TrashFile("big.bin", static_cast<uint64_t>(row.trashBytes));
        const AgentRun run = sandbox.Start({"-TrashChanged"});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(Logged(run, kSizeAlert), row.warns && row.alertWanted);
        const auto stored = OwnKey(sandbox, "TrashLastWarnSizeSize");
        if (row.warns) {
            ASSERT_TRUE(stored.has_value());
            EXPECT_EQ(stored->RealValue(), static_cast<double>(row.trashBytes));
            EXPECT_TRUE(OwnKey(sandbox, "TrashLastWarnSizeTime").has_value());
        } else {
            EXPECT_EQ(stored.has_value(), row.lastSize.has_value());
            if (stored) {
                EXPECT_EQ(stored->RealValue(), *row.lastSize);
            }
        }
    }
}

std::set<std::string> StoredHistory(const Sandbox& sandbox) {
    std::set<std::string> names;
    const auto history = OwnKey(sandbox, "TrashUninstallerHistory");
    if (!history || history->Find("values") == nullptr)
        return names;
    for (const auto& item : history->Find("values")->Items())
        names.insert(item.Text());
    return names;
}

TEST(Agent, ApplicationFilter) {
    Sandbox sandbox;
    sandbox.InstallCompanion(kAllVerbs);
    sandbox.WritePreferences(kCompanion, {{"AlertUninstallApps", "<true/>"}});
    sandbox.WritePreferences("com.ombrastel.larkfenhelper",
                             {{"TrashUninstallerHistory",
                               "<dict><key>values</key><array><string>Old.app</string>"
                               "<string>Gone.app</string></array></dict>"}});
    sandbox.TrashFile("notes.txt", 10);
    sandbox.TrashBundle("Old.app", "<key>CFBundleName</key><string>Old</string>");
    sandbox.TrashBundle("Viewer (2.1).app",
                        "<key>CFBundleName</key><string>Viewer</string>"
                        "<key>CFBundleShortVersionString</key><string>2.1</string>");
    sandbox.TrashBundle(
        "Helper.app", "<key>CFBundleIdentifier</key><string>com.ombrastel.larkfenhelper</string>");
    std::ofstream(sandbox.Trash() + "/Game.ipa") << std::string(
        "\x7f"
        "ELF\x02\x01\x01\x00"
        "AI\x02",
        11);

    // Nothing that qualifies: no alert, and every item is recorded.
    AgentRun run = sandbox.Start({"-TrashChanged"});
    EXPECT_FALSE(Logged(run, kUninstallAlert));
    const std::set<std::string> quiet{"notes.txt", "Old.app", "Viewer (2.1).app", "Helper.app",
                                      "Game.ipa"};
    EXPECT_EQ(StoredHistory(sandbox), quiet);

    // Two new applications: one alert; next time they are known.
    sandbox.TrashBundle("New.app", "<key>CFBundleName</key><string>New</string>");
    std::ofstream(sandbox.Trash() + "/editor.desktop")
        << "[Desktop Entry]\nType=Application\nName=Editor\nExec=editor\n";
    run = sandbox.Start({"-TrashChanged"});
    EXPECT_TRUE(Logged(run, kUninstallAlert));
    std::set<std::string> all = quiet;
    all.insert({"New.app", "editor.desktop"});
    EXPECT_EQ(StoredHistory(sandbox), all);
    run = sandbox.Start({"-TrashChanged"});
    EXPECT_FALSE(Logged(run, kUninstallAlert));

    // The history is replaced whole: an item that left the Trash leaves it.
    std::filesystem::remove_all(sandbox.Trash() + "/New.app");
    run = sandbox.Start({"-TrashChanged"});
    all.erase("New.app");
    EXPECT_EQ(StoredHistory(sandbox), all);
}

TEST(Agent, SizeAlertComesBeforeTheApplicationAlert) {
    Sandbox sandbox;
    sandbox.InstallCompanion(kAllVerbs);
    sandbox.WritePreferences(kCompanion,
                             {{"AlertTrashFull", "<true/>"}, {"AlertUninstallApps", "<true/>"}});
    sandbox.TrashFile("big.bin", 60 * kMiB);
    sandbox.TrashBundle("New.app", "<key>CFBundleName</key><string>New</string>");
    const AgentRun run = sandbox.Start({"-TrashChanged"});
    EXPECT_EQ(run.log, (std::vector<std::string>{kSizeAlert, kUninstallAlert}));
    EXPECT_EQ(StoredHistory(sandbox), (std::set<std::string>{"big.bin", "New.app"}));
    EXPECT_TRUE(OwnKey(sandbox, "TrashLastWarnSizeSize").has_value());
}

TEST(Agent, ScanSuggestionDecision) {
    struct Row {
        const char* what;
        bool scheduleEnabled;
        bool alertRegularScans;
        std::optional<int64_t> suggestedSecondsAgo;
        std::optional<int64_t> scannedSecondsAgo;
        bool stores;
        bool suggests;
    };
    const Row rows[] = {
        {"with a schedule", true, true, 40 * kDay, {}, false, false},
        {"reminders off", false, false, 40 * kDay, {}, false, false},
        {"first query starts the clock", false, true, {}, 40 * kDay, true, false},
        {"suggested 10 days ago", false, true, 10 * kDay, {}, false, false},
        {"never scanned, suggested 31 days ago", false, true, 31 * kDay, {}, true, true},
        {"scanned 10 days ago", false, true, 40 * kDay, 10 * kDay, false, false},
        {"scanned 31 days ago", false, true, 40 * kDay, 31 * kDay, true, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Sandbox sandbox;
        sandbox.InstallCompanion(kAllVerbs);
        std::map<std::string, std::string> companion{
            {"ScheduleEnabled", row.scheduleEnabled ? "<true/>" : "<false/>"},
            {"AlertRegularScans", row.alertRegularScans ? "<true/>" : "<false/>"}};
        if (row.scannedSecondsAgo) {
            companion["LastScanDate"] =
                "<string>" + TimestampSecondsAgo(*row.scannedSecondsAgo) + "</string>";
        }
        sandbox.WritePreferences(kCompanion, companion);
        std::string written;
        if (row.suggestedSecondsAgo) {
            written = TimestampSecondsAgo(*row.suggestedSecondsAgo);
            sandbox.WritePreferences(
                "com.ombrastel.larkfenhelper",
                {{"LastSuggestedScanDate", "<string>" + written + "</string>"}});
        }
        const AgentRun run = sandbox.Start({"-QuerySuggestRun"});
        EXPECT_EQ(run.exitCode, 0);
        const auto stored = OwnKey(sandbox, "LastSuggestedScanDate");
        EXPECT_EQ(stored.has_value() && stored->Text() != written, row.stores);
        const auto verbs = sandbox.Verbs(row.suggests ? 1 : 0);
        EXPECT_EQ(verbs, row.suggests ? std::vector<std::string>{"ScanFromSettings"}
                                      : std::vector<std::string>{});
    }
}

TEST(Agent, CommandsOverThePrivateBus) {
    Sandbox sandbox;
    sandbox.InstallBusCompanion();
    sandbox.WritePreferences(kCompanion, {{"AlertRegularScans", "<true/>"}});
    sandbox.WritePreferences(
        "com.ombrastel.larkfenhelper",
        {{"LastSuggestedScanDate", "<string>" + TimestampSecondsAgo(40 * kDay) + "</string>"}});
    const AgentRun run = sandbox.Start({"-Scheduler", "-QuerySuggestRun"}, /*privateBus=*/true);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(sandbox.Verbs(2), (std::vector<std::string>{"ScanScheduled", "ScanFromSettings"}));
}

TEST(Agent, FailingCommandIsLogged) {
    Sandbox sandbox;
    sandbox.InstallCompanion({"ShowSettings"});  // does not know ScanScheduled
    const AgentRun run = sandbox.Start({"-Scheduler"});
    ASSERT_EQ(run.log.size(), 6U);
    EXPECT_EQ(run.log[0],
              "AppleScript Error: Larkfen got an error: it does not understand the "
              "\"ScanScheduled\" message.");
    EXPECT_EQ(run.log[1], "AppleScript Code:");
    EXPECT_TRUE(run.log[2].starts_with("tell application \"/")) << run.log[2];
    EXPECT_TRUE(run.log[2].ends_with("/applications/com.ombrastel.larkfen.desktop\""));
    EXPECT_EQ(std::vector<std::string>(run.log.begin() + 3, run.log.end()),
              (std::vector<std::string>{"activate", "ScanScheduled", "end tell"}));
}

TEST(Agent, CrashReport) {
    struct Row {
        const char* what;
        bool desktop;
        int exitCode;
    };
    const Row rows[] = {
        {"an older crash log is replaced", true, 0},
        // The handler's own failure ends the process with the runtime's report.
        {"no desktop folder to write to", false, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Sandbox sandbox;
        sandbox.InstallCompanion(kAllVerbs);
        const std::string crashLog = sandbox.Desktop() + "/LarkfenHelperCrashLog.txt";
        if (row.desktop) {
            std::ofstream(crashLog) << "an older crash\nwith its stack\nand more\n";
        } else {
            std::filesystem::remove_all(sandbox.Desktop());
        }
        // A folder in the Trash that cannot be listed ends the measurement with an exception.
        std::filesystem::create_directories(sandbox.Trash() + "/locked/inner");
        std::filesystem::permissions(sandbox.Trash() + "/locked", std::filesystem::perms::none);
        // Root reads every folder; the agent then runs as nobody, in a sandbox open to it.
        if (getuid() == 0) {
            ASSERT_EQ(system(("chmod -R a+rwX " + sandbox.Trash() + "/../../.. && chmod 000 " +
                              sandbox.Trash() + "/locked")
                                 .c_str()),
                      0);
        }
        const AgentRun run = sandbox.Start({"-TrashChanged"}, false, /*asNobody=*/true);
        EXPECT_EQ(run.exitCode, row.exitCode);
        ASSERT_GE(run.log.size(), 2U);
        EXPECT_EQ(run.log[0], "Permission denied");
        EXPECT_NE(run.log[1].find("Handle_WatchTrash"), std::string::npos) << run.log[1];
        EXPECT_FALSE(OwnKey(sandbox, "TrashUninstallerHistory").has_value());  // never reached
        if (!row.desktop) {
            EXPECT_EQ(run.log.size(), 3U);
            EXPECT_FALSE(std::filesystem::exists(sandbox.Desktop()));  // never created
            continue;
        }
        EXPECT_EQ(run.log.size(), 2U);
        std::ifstream file(crashLog);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        // The log and the file hold the same two texts.
        EXPECT_EQ(lines, std::vector<std::string>(run.log.begin(), run.log.begin() + 2));
    }
}

}  // namespace
