// The Linux store against real files, with real processes.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <plist/plist.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "fakes/ConfigHome.h"
#include "fakes/RecordingLog.h"
#include "platform/PreferenceStore.h"
#include "platform/PropertyListFile.h"

namespace {

using platform::PropertyListValue;

const std::string kDomain = "org.example.test";
const std::string kUser(platform::kCFPreferencesCurrentUser);
const std::string kHost(platform::kCFPreferencesAnyHost);

std::string ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// Sets the key to 0 .. count-1 in turn, synchronising after each, in a new process.
pid_t StartWriter(const std::string& key, int count) {
    const pid_t pid = fork();
    if (pid == 0) {
        auto& store = platform::CurrentPreferenceStore();
        for (int i = 0; i < count; ++i) {
            store.SetValue(key, PropertyListValue::Integer(i), kDomain, kUser, kHost);
            if (!store.Synchronize(kDomain, kUser, kHost))
                _exit(1);
        }
        _exit(0);
    }
    return pid;
}

bool Exited0(pid_t pid) {
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Each of the processes' own keys holds its last value, in a file that parses.
void ExpectWritersKeptTheirKeys(int writers, int count) {
    ConfigHome home;
    std::vector<pid_t> pids;
    for (int i = 0; i < writers; ++i)
        pids.push_back(StartWriter("key" + std::to_string(i), count));
    for (pid_t pid : pids)
        EXPECT_TRUE(Exited0(pid));
    const auto value = platform::ReadPropertyListFile(home.Domain(kDomain));
    ASSERT_TRUE(value.has_value());
    for (int i = 0; i < writers; ++i) {
        const PropertyListValue* key = value->Find("key" + std::to_string(i));
        ASSERT_NE(key, nullptr) << "key" << i;
        EXPECT_EQ(key->IntegerValue(), count - 1) << "key" << i;
    }
}

TEST(PlistFileStore, ConcurrentWritersKeepEachOthersKeys) {
    ExpectWritersKeptTheirKeys(2, 200);
    ExpectWritersKeptTheirKeys(20, 25);
}

TEST(PlistFileStore, KilledWritersNeverLeaveABrokenFile) {
    ConfigHome home;
    std::mt19937 random(11);
    for (int round = 0; round < 30; ++round) {
        const pid_t pid = StartWriter("key", 1000000);
        usleep(std::uniform_int_distribution<useconds_t>(0, 20000)(random));
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        const auto read = platform::ReadPropertyList(home.Domain(kDomain));
        EXPECT_NE(read.status, platform::PropertyListRead::Status::kCorrupt) << "round " << round;
    }
    // The next writer clears what killed ones left half-written.
    EXPECT_TRUE(Exited0(StartWriter("key", 1)));
    for (const auto& entry : std::filesystem::directory_iterator(home.Path())) {
        EXPECT_EQ(entry.path().string().find(".tmp."), std::string::npos)
            << "a killed writer's temporary file is left: " << entry.path();
    }
}

TEST(PlistFileStore, DeadLockHolderDoesNotBlock) {
    ConfigHome home;
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t holder = fork();
    if (holder == 0) {
        const int fd = open((home.Domain(kDomain) + ".lock").c_str(), O_RDWR | O_CREAT, 0600);
        flock(fd, LOCK_EX);
        (void)!write(ready[1], "x", 1);
        pause();
        _exit(0);
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    EXPECT_TRUE(Exited0(StartWriter("after", 1)));
}

TEST(PlistFileStore, DamagedFilesReadEmptyAndAreKeptAside) {
    const std::string xml = platform::PropertyListToXml(
        PropertyListValue::Dictionary({{"kept", PropertyListValue::String("yes")}}));
    struct Row {
        const char* what;
        std::string bytes;
        bool readable;  // the old keys are there to read
    };
    const Row rows[] = {
        {"truncated", xml.substr(0, xml.size() - 20), false},
        {"random bytes", std::string("\x13\x37\xfe\x00garbage\xff", 12), false},
        {"empty", "", false},
        {"array root",
         platform::PropertyListToXml(PropertyListValue::Array({PropertyListValue::Integer(1)})),
         false},
        {"well formed", xml, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        ConfigHome home;
        RecordingLog log;
        const std::string path = home.Domain(kDomain);
        WriteBytes(path, row.bytes);
        auto& store = platform::CurrentPreferenceStore();
        EXPECT_EQ(store.CopyValue("kept", kDomain, kUser, kHost).has_value(), row.readable);
        EXPECT_EQ(log.entries.size(), row.readable ? 0U : 1U);
        store.SetValue("new", PropertyListValue::Boolean(true), kDomain, kUser, kHost);
        ASSERT_TRUE(store.Synchronize(kDomain, kUser, kHost));
        const auto value = platform::ReadPropertyListFile(path);
        ASSERT_TRUE(value.has_value());
        EXPECT_NE(value->Find("new"), nullptr);
        EXPECT_EQ(value->Find("kept") != nullptr, row.readable);
        if (!row.readable) {
            EXPECT_EQ(ReadBytes(path + ".corrupt"), row.bytes);
        }
        EXPECT_LE(log.entries.size(), 1U);  // said once
    }
}

TEST(PlistFileStore, ReadsBinaryFiles) {
    ConfigHome home;
    const std::string xml = platform::PropertyListToXml(
        PropertyListValue::Dictionary({{"AlertTrashFull", PropertyListValue::Boolean(true)}}));
    plist_t root = nullptr;
    plist_from_xml(xml.data(), static_cast<uint32_t>(xml.size()), &root);
    char* bytes = nullptr;
    uint32_t length = 0;
    plist_to_bin(root, &bytes, &length);
    WriteBytes(home.Domain(kDomain), std::string(bytes, length));
    plist_to_bin_free(bytes);
    plist_free(root);
    const auto value =
        platform::CurrentPreferenceStore().CopyValue("AlertTrashFull", kDomain, kUser, kHost);
    ASSERT_TRUE(value.has_value());
    EXPECT_TRUE(value->BooleanValue());
}

TEST(PlistFileStore, OutsideChangesSurviveAndNoOpsWriteNothing) {
    ConfigHome home;
    const std::string path = home.Domain(kDomain);
    auto& store = platform::CurrentPreferenceStore();
    store.SetValue("mine", PropertyListValue::Integer(1), kDomain, kUser, kHost);
    WriteBytes(path, platform::PropertyListToXml(PropertyListValue::Dictionary(
                         {{"theirs", PropertyListValue::Integer(2)}})));
    ASSERT_TRUE(store.Synchronize(kDomain, kUser, kHost));
    auto value = platform::ReadPropertyListFile(path);
    ASSERT_TRUE(value.has_value());
    EXPECT_NE(value->Find("mine"), nullptr);
    EXPECT_NE(value->Find("theirs"), nullptr);
    EXPECT_EQ(store.CopyValue("theirs", kDomain, kUser, kHost)->IntegerValue(), 2);

    struct stat before {};
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    store.SetValue("mine", PropertyListValue::Integer(1), kDomain, kUser, kHost);  // the same value
    ASSERT_TRUE(store.Synchronize(kDomain, kUser, kHost));
    struct stat after {};
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);  // not replaced

    store.SetMultiple({"mine"}, kDomain, kUser, kHost);
    ASSERT_TRUE(store.Synchronize(kDomain, kUser, kHost));
    value = platform::ReadPropertyListFile(path);
    EXPECT_EQ(value->Find("mine"), nullptr);
    EXPECT_FALSE(store.CopyValue("mine", kDomain, kUser, kHost).has_value());
    EXPECT_EQ(before.st_mode & 0777, 0600U);
}

TEST(PlistFileStore, FailedSynchronisationKeepsOldFileAndPendingChange) {
    ConfigHome home;
    const std::string path = home.Domain(kDomain);
    const std::string old = platform::PropertyListToXml(
        PropertyListValue::Dictionary({{"old", PropertyListValue::Integer(1)}}));
    WriteBytes(path, old);
    std::filesystem::create_directory(path + ".lock");  // the lock cannot be taken
    auto& store = platform::CurrentPreferenceStore();
    store.SetValue("new", PropertyListValue::Integer(2), kDomain, kUser, kHost);
    EXPECT_FALSE(store.Synchronize(kDomain, kUser, kHost));
    EXPECT_EQ(ReadBytes(path), old);
    EXPECT_EQ(store.CopyValue("new", kDomain, kUser, kHost)->IntegerValue(), 2);
    std::filesystem::remove(path + ".lock");
    EXPECT_TRUE(store.Synchronize(kDomain, kUser, kHost));  // the change was kept
    EXPECT_NE(platform::ReadPropertyListFile(path)->Find("new"), nullptr);
}

}  // namespace
