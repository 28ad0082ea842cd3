// The Linux store against real files, with real processes.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "fakes/ConfigHome.h"
#include "fakes/RecordingLog.h"
#include "platform/PreferenceStore.h"
#include "platform/PropertyListFile.h"

namespace {

using platform::PropertyListValue;

const std::string kDomain = "org.example.test";
const std::string kFile = kDomain + ".plist";
const std::string kUser(platform::kCFPreferencesCurrentUser);
const std::string kHost(platform::kCFPreferencesAnyHost);

// Sets the key to 0 .. count-1 in turn, synchronising after each, in a new process.
pid_t StartWriter(const std::string& key, int count, const std::string& domain = kDomain) {
    const pid_t pid = fork();
    if (pid == 0) {
        auto& store = platform::CurrentPreferenceStore();
        for (int i = 0; i < count; ++i) {
            store.SetValue(key, PropertyListValue::Integer(i), domain, kUser, kHost);
            if (!store.Synchronize(domain, kUser, kHost))
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

// A configuration folder of its own for each test, which the store reads as new.
class PlistFileStore : public testing::Test {
  protected:
    ConfigHome home_;
    const std::string path_ = home_ / kFile;
};

TEST_F(PlistFileStore, ConcurrentWritersKeepEachOthersKeys) {
    for (const auto& [writers, count] : {std::pair{2, 200}, std::pair{20, 25}}) {
        SCOPED_TRACE(std::to_string(writers) + " writers");
        const std::string domain = "writers" + std::to_string(writers);
        std::vector<pid_t> pids;
        for (int i = 0; i < writers; ++i)
            pids.push_back(StartWriter("key" + std::to_string(i), count, domain));
        for (pid_t pid : pids)
            EXPECT_TRUE(Exited0(pid));
        // Each writer's own key holds its last value, in a file that parses.
        const auto value = platform::ReadPropertyListFile(home_ / (domain + ".plist"));
        ASSERT_TRUE(value.has_value());
        for (int i = 0; i < writers; ++i) {
            const PropertyListValue* key = value->Find("key" + std::to_string(i));
            ASSERT_NE(key, nullptr) << "key" << i;
            EXPECT_EQ(key->IntegerValue(), count - 1) << "key" << i;
        }
    }
}

TEST_F(PlistFileStore, KilledWritersNeverLeaveABrokenFile) {
    std::mt19937 random(11);
    for (int round = 0; round < 30; ++round) {
        const pid_t pid = StartWriter("key", 1000000);
        usleep(std::uniform_int_distribution<useconds_t>(0, 20000)(random));
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        const auto read = platform::ReadPropertyList(path_);
        EXPECT_NE(read.status, platform::PropertyListRead::Status::kCorrupt) << "round " << round;
    }
    // The next writer clears what killed ones left half-written.
    EXPECT_TRUE(Exited0(StartWriter("key", 1)));
    for (const auto& entry : std::filesystem::directory_iterator(home_.Path())) {
        EXPECT_EQ(entry.path().string().find(".tmp."), std::string::npos)
            << "a killed writer's temporary file is left: " << entry.path();
    }
}

TEST_F(PlistFileStore, DeadLockHolderDoesNotBlock) {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t holder = fork();
    if (holder == 0) {
        const int fd = open((path_ + ".lock").c_str(), O_RDWR | O_CREAT, 0600);
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

TEST_F(PlistFileStore, DamagedFilesReadEmptyAndAreKeptAside) {
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
    auto& store = platform::CurrentPreferenceStore();
    for (size_t i = 0; i < std::size(rows); ++i) {
        const Row& row = rows[i];
        SCOPED_TRACE(row.what);
        RecordingLog log;
        const std::string domain = "damaged" + std::to_string(i);
        home_.WriteFile(domain + ".plist", row.bytes);
        EXPECT_EQ(store.CopyValue("kept", domain, kUser, kHost).has_value(), row.readable);
        EXPECT_EQ(log.entries.size(), row.readable ? 0U : 1U);
        store.SetValue("new", PropertyListValue::Boolean(true), domain, kUser, kHost);
        ASSERT_TRUE(store.Synchronize(domain, kUser, kHost));
        const auto value = platform::ReadPropertyListFile(home_ / (domain + ".plist"));
        ASSERT_TRUE(value.has_value());
        EXPECT_NE(value->Find("new"), nullptr);
        EXPECT_EQ(value->Find("kept") != nullptr, row.readable);
        if (!row.readable) {
            EXPECT_EQ(home_.ReadFile(domain + ".plist.corrupt"), row.bytes);
        }
        EXPECT_LE(log.entries.size(), 1U);  // said once
    }
}

TEST_F(PlistFileStore, OutsideChangesSurviveAndNoOpsWriteNothing) {
    auto& store = platform::CurrentPreferenceStore();
    store.SetValue("mine", PropertyListValue::Integer(1), kDomain, kUser, kHost);
    home_.WriteFile(kFile, platform::PropertyListToXml(PropertyListValue::Dictionary(
                               {{"theirs", PropertyListValue::Integer(2)}})));
    ASSERT_TRUE(store.Synchronize(kDomain, kUser, kHost));
    auto value = platform::ReadPropertyListFile(path_);
    ASSERT_TRUE(value.has_value());
    EXPECT_NE(value->Find("mine"), nullptr);
    EXPECT_NE(value->Find("theirs"), nullptr);
    EXPECT_EQ(store.CopyValue("theirs", kDomain, kUser, kHost)->IntegerValue(), 2);

    struct stat before {};
    ASSERT_EQ(stat(path_.c_str(), &before), 0);
    store.SetValue("mine", PropertyListValue::Integer(1), kDomain, kUser, kHost);  // the same value
    ASSERT_TRUE(store.Synchronize(kDomain, kUser, kHost));
    struct stat after {};
    ASSERT_EQ(stat(path_.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);  // not replaced

    store.SetMultiple({"mine"}, kDomain, kUser, kHost);
    ASSERT_TRUE(store.Synchronize(kDomain, kUser, kHost));
    EXPECT_EQ(platform::ReadPropertyListFile(path_)->Find("mine"), nullptr);
    EXPECT_FALSE(store.CopyValue("mine", kDomain, kUser, kHost).has_value());
    EXPECT_EQ(before.st_mode & 0777, 0600U);
}

TEST_F(PlistFileStore, FailedSynchronisationKeepsOldFileAndPendingChange) {
    const std::string old = platform::PropertyListToXml(
        PropertyListValue::Dictionary({{"old", PropertyListValue::Integer(1)}}));
    home_.WriteFile(kFile, old);
    std::filesystem::create_directory(path_ + ".lock");  // the lock cannot be taken
    auto& store = platform::CurrentPreferenceStore();
    store.SetValue("new", PropertyListValue::Integer(2), kDomain, kUser, kHost);
    EXPECT_FALSE(store.Synchronize(kDomain, kUser, kHost));
    EXPECT_EQ(home_.ReadFile(kFile), old);
    EXPECT_EQ(store.CopyValue("new", kDomain, kUser, kHost)->IntegerValue(), 2);
    std::filesystem::remove(path_ + ".lock");
    EXPECT_TRUE(store.Synchronize(kDomain, kUser, kHost));  // the change was kept
    EXPECT_NE(platform::ReadPropertyListFile(path_)->Find("new"), nullptr);
}

}  // namespace
