// The agent against what a real disk and real preference files can hold.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include "e2e/Sandbox.h"
#include "platform/PropertyListFile.h"

namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kVerbs{"SecureEmptyTrash", "ShowSettings", "UninstallTrashedApps",
                                      "ScanScheduled", "ScanFromSettings"};

// The own domain parses, and holds a history of count names.
void ExpectHistory(const Sandbox& sandbox, size_t count) {
    const auto domain = platform::ReadPropertyListFile(sandbox.OwnDomain());
    ASSERT_TRUE(domain.has_value()) << "the preference file does not parse";
    const auto* history = domain->Find("TrashUninstallerHistory");
    ASSERT_NE(history, nullptr);
    ASSERT_NE(history->Find("values"), nullptr);
    EXPECT_EQ(history->Find("values")->Items().size(), count);
}

TEST(AgentStress, HundredThousandItems) {
    Sandbox sandbox;
    sandbox.InstallCompanion(kVerbs);
    for (int i = 0; i < 100000; ++i) {
        const int fd = open((sandbox.Trash() + "/item-" + std::to_string(i)).c_str(),
                            O_CREAT | O_WRONLY, 0644);
        ASSERT_GE(fd, 0);
        close(fd);
    }
    const AgentRun run = sandbox.Start({"-TrashChanged"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.log.empty());
    ExpectHistory(sandbox, 100000);
}

TEST(AgentStress, AwkwardTrash) {
    Sandbox sandbox;
    sandbox.InstallCompanion(kVerbs);
    const std::string trash = sandbox.Trash();
    // A tree 10,000 folders deep, made relative to each level: its path is longer
    // than any path the system takes whole.
    const int top = open(trash.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(mkdirat(top, "deep", 0755), 0);
    int fd = openat(top, "deep", O_RDONLY | O_DIRECTORY);
    for (int level = 0; level < 10000; ++level) {
        ASSERT_EQ(mkdirat(fd, "d", 0755), 0);
        const int next = openat(fd, "d", O_RDONLY | O_DIRECTORY);
        close(fd);
        fd = next;
    }
    const int leaf = openat(fd, "leaf.bin", O_CREAT | O_WRONLY, 0644);
    ASSERT_EQ(ftruncate(leaf, 60 * 1024 * 1024), 0);
    close(leaf);
    close(fd);
    close(top);
    std::ofstream(trash + "/line\nfeed.txt") << "x";
    std::ofstream(trash + "/bad-\xff\xfe-utf8.txt") << "x";
    std::ofstream(trash + "/" + std::string(255, 'n')) << "x";
    fs::create_directory_symlink(trash, trash + "/loop");  // a link back to the Trash itself
    fs::create_symlink(trash + "/missing", trash + "/dangling");
    sandbox.WritePreferences("com.ombrastel.larkfen", {{"AlertTrashFull", "<true/>"}});

    const AgentRun run = sandbox.Start({"-TrashChanged"});
    EXPECT_EQ(run.exitCode, 0);
    // The deep file counts; the link is not followed (else the size would grow without end).
    EXPECT_EQ(run.log, std::vector<std::string>{
                           "Could not show wndAlertTrashSize: no display is available."});
    ExpectHistory(sandbox, 6);
    const auto domain = platform::ReadPropertyListFile(sandbox.OwnDomain());
    // The deep file, three one-byte files, and each link's own length, not its target's.
    const double expected = 60.0 * 1024 * 1024 + 3 + static_cast<double>(trash.size()) +
                            static_cast<double>((trash + "/missing").size());
    EXPECT_EQ(domain->Find("TrashLastWarnSizeSize")->RealValue(), expected);
}

TEST(AgentStress, VanishingItems) {
    Sandbox sandbox;
    sandbox.InstallCompanion(kVerbs);
    for (int i = 0; i < 20000; ++i)
        std::ofstream(sandbox.Trash() + "/f" + std::to_string(i));
    // Items leave the Trash while the agent walks it.
    std::thread remover([&] {
        for (int i = 0; i < 20000; i += 2)
            fs::remove(sandbox.Trash() + "/f" + std::to_string(i));
    });
    const AgentRun run = sandbox.Start({"-TrashChanged"});
    remover.join();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.log.empty()) << run.log.front();
    const auto domain = platform::ReadPropertyListFile(sandbox.OwnDomain());
    ASSERT_TRUE(domain.has_value());
    const size_t recorded = domain->Find("TrashUninstallerHistory")->Find("values")->Items().size();
    EXPECT_GE(recorded, 10000U);
    EXPECT_LE(recorded, 20000U);
}

TEST(AgentStress, FiftyAgentsAtOnce) {
    Sandbox sandbox;
    sandbox.InstallCompanion(kVerbs);
    sandbox.TrashFile("big.bin", 60 * 1024 * 1024);
    sandbox.WritePreferences("com.ombrastel.larkfen", {{"AlertRegularScans", "<true/>"}});
    std::vector<std::thread> agents;
    std::vector<int> exits(50, -1);
    for (int i = 0; i < 50; ++i) {
        agents.emplace_back([&, i] {
            exits[static_cast<size_t>(i)] =
                sandbox.Start({i % 2 == 0 ? "-TrashChanged" : "-QuerySuggestRun"}).exitCode;
        });
    }
    for (auto& agent : agents)
        agent.join();
    for (int code : exits)
        EXPECT_EQ(code, 0);
    const auto domain = platform::ReadPropertyListFile(sandbox.OwnDomain());
    ASSERT_TRUE(domain.has_value());
    // Each key one of them wrote is there: nobody's write was lost to another's.
    for (const char* key :
         {"NSApplicationShowExceptions", "TrashUninstallerHistory", "TrashLastWarnSizeSize",
          "TrashLastWarnSizeTime", "LastSuggestedScanDate"}) {
        EXPECT_NE(domain->Find(key), nullptr) << key;
    }
}

TEST(AgentStress, GarbagePreferencesBetweenRuns) {
    Sandbox sandbox;
    sandbox.InstallCompanion(kVerbs);
    sandbox.TrashFile("notes.txt", 10);
    std::mt19937 random(5);
    for (int round = 0; round < 20; ++round) {
        std::string garbage(static_cast<size_t>(random() % 4096), '\0');
        for (char& c : garbage)
            c = static_cast<char>(random());
        if (round % 4 == 1)
            garbage = "bplist00" + garbage;
        if (round % 4 == 2)
            garbage = "<?xml version=\"1.0\"?><plist><dict><key>a</key>" + garbage;
        std::ofstream(sandbox.OwnDomain(), std::ios::binary) << garbage;
        std::ofstream(sandbox.Domain("com.ombrastel.larkfen"), std::ios::binary) << garbage;
        const AgentRun run = sandbox.Start({round % 2 == 0 ? "-TrashChanged" : "-QuerySuggestRun"});
        EXPECT_EQ(run.exitCode, 0) << "round " << round;
        const auto domain = platform::ReadPropertyListFile(sandbox.OwnDomain());
        ASSERT_TRUE(domain.has_value()) << "round " << round;
    }
}

}  // namespace
