#include "runtime/FolderItem.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "fakes/RecordingFileSystem.h"
#include "fakes/TempFolder.h"
#include "runtime/BinaryStream.h"
#include "runtime/RuntimeException.h"
#include "runtime/SpecialFolder.h"

namespace {

std::shared_ptr<FolderItem> Item(const std::string& path) {
    return std::make_shared<FolderItem>(path);
}

std::multiset<std::string> ChildNames(const std::shared_ptr<FolderItem>& folder) {
    std::multiset<std::string> names;
    for (const auto& child : folder->Children(false))
        names.insert(child->Name());
    return names;
}

std::multiset<std::string> TrueItemNames(const std::shared_ptr<FolderItem>& folder) {
    std::multiset<std::string> names;
    const int64_t count = folder->Count();
    for (int64_t index = 1; index <= count; ++index) {
        if (const auto child = folder->TrueItem(index))
            names.insert(child->Name());
    }
    return names;
}

// Sets or clears environment variables for one test and puts them back after.
class EnvironmentGuard {
  public:
    ~EnvironmentGuard() {
        for (const auto& [name, value] : saved_)
            Put(name, value);
    }
    void Set(const std::string& name, const std::optional<std::string>& value) {
        const char* old = std::getenv(name.c_str());
        saved_.try_emplace(name, old != nullptr ? std::optional<std::string>(old) : std::nullopt);
        Put(name, value);
    }

  private:
    static void Put(const std::string& name, const std::optional<std::string>& value) {
        value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }

    std::map<std::string, std::optional<std::string>> saved_;
};

TEST(FolderItem, AnswersForEachKindOfEntry) {
    TempFolder temp;
    temp.WriteFile("file.txt", "hello");
    temp.WriteFile("empty", "");
    temp.MakeFolder("folder/inner");
    temp.MakeLink("folder-link", "folder");
    temp.MakeLink("file-link", "file.txt");
    temp.MakeLink("dangling", "nowhere/at/all");
    struct Row {
        const char* path;
        bool exists;
        bool isFolder;
        uint64_t length;
        const char* name;
    };
    const Row rows[] = {
        {"file.txt", true, false, 5, "file.txt"},
        {"empty", true, false, 0, "empty"},
        {"folder", true, true, 0, "folder"},
        {"folder/", true, true, 0, "folder"},
        // A link is looked at itself: its length is that of the path it holds.
        {"folder-link", true, false, 6, "folder-link"},
        {"file-link", true, false, 8, "file-link"},
        {"dangling", true, false, 14, "dangling"},
        {"missing", false, false, 0, "missing"},
        {"file.txt/under-a-file", false, false, 0, "under-a-file"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        const auto item = Item(temp / row.path);
        EXPECT_EQ(item->Exists(), row.exists);
        EXPECT_EQ(item->LastErrorCode(), 0) << "a missing item is no failure";
        EXPECT_EQ(item->IsFolder(), row.isFolder);
        EXPECT_EQ(item->Length(), row.length);
        EXPECT_EQ(item->Name(), row.name);
    }
    const auto missing = Item(temp / "missing");
    missing->Length();
    EXPECT_EQ(missing->LastErrorCode(), ENOENT);
}

TEST(FolderItem, ListsEveryEntryOnce) {
    TempFolder temp;
    std::multiset<std::string> expected;
    // Enough entries, with long names, to need several reads of the folder.
    for (int i = 0; i < 1500; ++i) {
        const std::string name = "entry-with-a-rather-long-name-" + std::to_string(i);
        temp.WriteFile("many/" + name, "x");
        expected.insert(name);
    }
    temp.MakeFolder("many/sub");
    temp.MakeLink("many/link", "sub");
    temp.WriteFile("many/.hidden", "");
    expected.insert({"sub", "link", ".hidden"});
    const auto folder = Item(temp / "many");

    EXPECT_EQ(folder->Count(), static_cast<int64_t>(expected.size()));
    EXPECT_EQ(ChildNames(folder), expected);
    EXPECT_EQ(TrueItemNames(folder), expected);
    EXPECT_EQ(folder->TrueItem(0), nullptr);
    EXPECT_EQ(folder->TrueItem(folder->Count() + 1), nullptr);
    // Going back reads the folder again from the start.
    const std::string second = folder->TrueItem(2)->Name();
    const std::string first = folder->TrueItem(1)->Name();
    EXPECT_EQ(folder->TrueItem(2)->Name(), second);
    EXPECT_EQ(folder->TrueItem(1)->Name(), first);
    EXPECT_NE(first, second);
}

TEST(FolderItem, EmptyFolderHasNoEntries) {
    TempFolder temp;
    temp.MakeFolder("empty");
    const auto folder = Item(temp / "empty");
    int visits = 0;
    for (const auto& child : folder->Children(false)) {
        EXPECT_NE(child, nullptr);
        ++visits;
    }
    EXPECT_EQ(visits, 0);
    EXPECT_EQ(folder->Count(), 0);
    EXPECT_EQ(folder->TrueItem(1), nullptr);
    EXPECT_EQ(folder->LastErrorCode(), 0);
}

TEST(FolderItem, ListingLooksAtNoEntry) {
    TempFolder temp;
    for (int i = 0; i < 50; ++i)
        temp.WriteFile("f/" + std::to_string(i), "x");
    temp.MakeFolder("f/sub");
    const auto folder = Item(temp / "f");
    RecordingFileSystem recording;
    int visits = 0;
    for (const auto& child : folder->Children(false))
        visits += child != nullptr ? 1 : 0;
    EXPECT_EQ(visits, 51);
    EXPECT_EQ(recording.counts.openFolder, 1);
    EXPECT_EQ(recording.counts.status, 0);
    EXPECT_EQ(recording.counts.statEntry, 0);
}

TEST(FolderItem, ListingFailuresRaiseWithErrno) {
    TempFolder temp;
    temp.WriteFile("file", "x");
    temp.MakeFolder("folder");
    temp.MakeLink("link", "folder");
    struct Row {
        const char* path;
        int error;
    };
    const Row rows[] = {{"missing", ENOENT}, {"file", ENOTDIR}, {"link", ENOTDIR}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        const auto item = Item(temp / row.path);
        try {
            for (const auto& child : item->Children(false))
                ADD_FAILURE() << child->Name();
            ADD_FAILURE() << "no exception";
        } catch (const IOException& error) {
            EXPECT_EQ(error.ErrorNumber(), row.error);
            EXPECT_EQ(error.Message(), std::strerror(row.error));
        }
        EXPECT_EQ(item->LastErrorCode(), row.error);
        EXPECT_EQ(item->Count(), 0);
        EXPECT_EQ(item->LastErrorCode(), row.error);
        EXPECT_EQ(item->TrueItem(1), nullptr);
    }
    // Nothing is read until an iteration begins.
    const auto iterable = Item(temp / "missing")->Children(false);
    EXPECT_FALSE(iterable.ResolveAliases());
}

TEST(FolderItem, UnreadableFolderRaisesWithErrno) {
    TempFolder temp;
    temp.MakeFolder("locked");
    chmod((temp / "locked").c_str(), 0);
    EXPECT_EXIT(
        {
            DropRootPrivileges();
            const auto item = Item(temp / "locked");
            try {
                for (const auto& child : item->Children(false))
                    std::_Exit(child ? 4 : 5);
            } catch (const IOException& error) {
                std::_Exit(error.ErrorNumber() == EACCES && error.Message() == std::strerror(EACCES)
                               ? 0
                               : 2);
            }
            std::_Exit(1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(FolderItem, ChildNamesAnEntryWhetherItExistsOrNot) {
    TempFolder temp;
    temp.WriteFile("target.txt", "abc");
    temp.MakeLink("link", "target.txt");
    temp.MakeLink("dangling", "missing");
    const auto folder = Item(temp.Path());

    const auto missing = folder->Child("nothing-here", false);
    ASSERT_NE(missing, nullptr);
    EXPECT_FALSE(missing->Exists());
    EXPECT_EQ(missing->NativePath(), temp / "nothing-here");

    struct Row {
        const char* name;
        bool resolve;
        std::string path;
    };
    const Row rows[] = {
        {"link", false, temp / "link"},
        {"link", true, temp / "target.txt"},
        {"dangling", true, temp / "dangling"},
        {"target.txt", true, temp / "target.txt"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.name) + (row.resolve ? " resolved" : ""));
        EXPECT_EQ(folder->Child(row.name, row.resolve)->NativePath(), row.path);
    }
    std::set<std::string> resolved;
    for (const auto& child : folder->Children(true))
        resolved.insert(child->NativePath());
    EXPECT_EQ(resolved, (std::set<std::string>{temp / "target.txt", temp / "dangling"}));
}

TEST(FolderItem, EntryThatVanishesIsPassedOverOrGone) {
    TempFolder temp;
    for (const char* name : {"a", "b", "c", "d"})
        temp.WriteFile(std::string("t/") + name, "x");
    const auto folder = Item(temp / "t");
    const int64_t count = folder->Count();
    ASSERT_EQ(count, 4);
    const std::string first = folder->TrueItem(1)->Name();
    // The walk has begun; one entry it has not reached and one it has go away.
    const std::string gone = first == "c" ? "d" : "c";
    std::remove((temp / "t/" + gone).c_str());
    std::remove((temp / "t/" + first).c_str());
    std::set<std::string> present;
    for (int64_t index = 2; index <= count; ++index) {
        const auto child = folder->TrueItem(index);
        if (child == nullptr)
            continue;
        if (child->Exists()) {
            present.insert(child->Name());
        } else {
            EXPECT_EQ(child->Name(), gone);
        }
    }
    std::set<std::string> expected = {"a", "b", "c", "d"};
    expected.erase(first);
    expected.erase(gone);
    EXPECT_EQ(present, expected);
}

TEST(FolderItem, DisplayNames) {
    TempFolder temp;
    temp.WriteFile("Plain File.txt", "");
    temp.WriteFile("viewer.desktop", "[Desktop Entry]\nType=Application\nName=Image Viewer\n");
    temp.WriteFile("nameless.desktop", "[Desktop Entry]\nType=Application\n");
    const auto trash = [&](const std::string& name, const std::string& path) {
        temp.WriteFile("Trash/files/" + name, "");
        temp.WriteFile("Trash/info/" + name + ".trashinfo",
                       "[Trash Info]\nPath=" + path + "\nDeletionDate=2024-01-02T03:04:05\n");
    };
    trash("Report.2.pdf", "/home/user/Documents/My%20Report.pdf");
    trash("ete.txt", "/home/user/%C3%A9t%C3%A9%25.txt");
    trash("relative", "Projects/old%20stuff");
    trash("broken", "/home/user/bad%ZZname");
    trash("nul", "/home/user/a%00b");
    trash("app.desktop", "/home/user/.local/share/applications/app.desktop");
    temp.WriteFile("Trash/files/app.desktop", "[Desktop Entry]\nName=Trashed App\n");
    temp.WriteFile("Trash/files/no-record", "");
    temp.WriteFile("files/outside-a-trash", "");
    struct Row {
        const char* path;
        const char* shown;
    };
    const Row rows[] = {
        {"Plain File.txt", "Plain File.txt"},
        {"viewer.desktop", "Image Viewer"},
        {"nameless.desktop", "nameless.desktop"},
        {"Trash/files/Report.2.pdf", "My Report.pdf"},
        {"Trash/files/ete.txt", "\xC3\xA9t\xC3\xA9%.txt"},
        {"Trash/files/relative", "old stuff"},
        {"Trash/files/broken", "broken"},
        {"Trash/files/nul", "nul"},
        {"Trash/files/app.desktop", "Trashed App"},
        {"Trash/files/no-record", "no-record"},
        {"files/outside-a-trash", "outside-a-trash"},
        {"missing", "missing"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(Item(temp / row.path)->DisplayName(), row.shown);
    }
}

TEST(BinaryStream, CreateWritesTheBytesAsGiven) {
    TempFolder temp;
    const auto file = Item(temp / "log.txt");
    const auto stream = BinaryStream::Create(file, false);
    stream->Write("first");
    stream->Write("");
    stream->Write(" line\nsecond\n");
    stream->Close();
    EXPECT_EQ(stream->LastErrorCode(), 0);
    EXPECT_EQ(temp.ReadFile("log.txt"), "first line\nsecond\n");
}

TEST(BinaryStream, OverwriteDecidesAboutAnExistingFile) {
    TempFolder temp;
    temp.WriteFile("old.txt", "old contents");
    const auto file = Item(temp / "old.txt");
    try {
        BinaryStream::Create(file, false);
        ADD_FAILURE() << "no exception";
    } catch (const IOException& error) {
        EXPECT_EQ(error.ErrorNumber(), 104);
    }
    EXPECT_EQ(temp.ReadFile("old.txt"), "old contents");

    const auto stream = BinaryStream::Create(file, true);
    stream->Close();
    EXPECT_EQ(temp.ReadFile("old.txt"), "");
    EXPECT_EQ(file->Length(), 0U);
}

TEST(BinaryStream, FailuresRaise) {
    TempFolder temp;
    temp.MakeFolder("a-folder");
    EXPECT_THROW(BinaryStream::Create(nullptr, true), NilObjectException);
    struct Row {
        const char* path;
        int error;
    };
    const Row rows[] = {{"no/such/folder/file", ENOENT}, {"a-folder", EISDIR}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        const auto file = Item(temp / row.path);
        try {
            BinaryStream::Create(file, true);
            ADD_FAILURE() << "no exception";
        } catch (const IOException& error) {
            EXPECT_EQ(error.ErrorNumber(), row.error);
            EXPECT_EQ(error.Message(), std::strerror(row.error));
        }
        EXPECT_EQ(file->LastErrorCode(), row.error);
    }
    const auto stream = BinaryStream::Create(Item(temp / "closed"), true);
    stream->Close();
    try {
        stream->Write("late");
        ADD_FAILURE() << "no exception";
    } catch (const IOException& error) {
        EXPECT_EQ(error.ErrorNumber(), EBADF);
        EXPECT_EQ(error.Message(), "");
    }
}

TEST(SpecialFolder, TrashFollowsTheDataHome) {
    TempFolder temp;
    EnvironmentGuard environment;
    environment.Set("HOME", temp / "home");
    struct Row {
        std::optional<std::string> dataHome;
        std::string trash;
    };
    const Row rows[] = {
        {std::nullopt, temp / "home/.local/share/Trash/files"},
        {temp / "data", temp / "data/Trash/files"},
        {"relative/data", temp / "home/.local/share/Trash/files"},
        {"", temp / "home/.local/share/Trash/files"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.dataHome.value_or("(unset)"));
        environment.Set("XDG_DATA_HOME", row.dataHome);
        const auto trash = SpecialFolder::Trash();
        ASSERT_NE(trash, nullptr);
        EXPECT_EQ(trash->NativePath(), row.trash);
    }
    // A Trash kept elsewhere through a link is given as the folder itself.
    temp.MakeFolder("elsewhere/files");
    temp.MakeLink("data/Trash/files", temp / "elsewhere/files");
    environment.Set("XDG_DATA_HOME", temp / "data");
    EXPECT_EQ(SpecialFolder::Trash()->NativePath(), temp / "elsewhere/files");
}

TEST(SpecialFolder, TrashOfAVolume) {
    TempFolder temp;
    const std::string uid = std::to_string(getuid());
    temp.MakeFolder("own/.Trash-" + uid + "/files");
    temp.MakeFolder("shared/.Trash/" + uid + "/files");
    chmod((temp / "shared/.Trash").c_str(), 01777);
    temp.MakeFolder("unsticky/.Trash/" + uid + "/files");
    temp.MakeFolder("none");
    struct Row {
        const char* volume;
        std::optional<std::string> trash;
    };
    const Row rows[] = {
        {"own", temp / ("own/.Trash-" + uid + "/files")},
        {"shared", temp / ("shared/.Trash/" + uid + "/files")},
        {"unsticky", std::nullopt},
        {"none", std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.volume);
        const auto trash = SpecialFolder::Trash(Item(temp / row.volume));
        if (row.trash) {
            ASSERT_NE(trash, nullptr);
            EXPECT_EQ(trash->NativePath(), *row.trash);
        } else {
            EXPECT_EQ(trash, nullptr);
        }
    }
}

TEST(SpecialFolder, DesktopFromUserDirs) {
    TempFolder temp;
    EnvironmentGuard environment;
    const std::string home = temp / "home";
    environment.Set("HOME", home);
    environment.Set("XDG_CONFIG_HOME", temp / "config");
    struct Row {
        const char* label;
        std::optional<std::string> userDirs;  // nullopt: no file
        std::string desktop;
    };
    const Row rows[] = {
        {"no file", std::nullopt, home + "/Desktop"},
        {"home relative", "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n", home + "/Schreibtisch"},
        {"among others",
         "# written by xdg-user-dirs-update\nXDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"
         "  XDG_DESKTOP_DIR = \"$HOME/Bureau/\"\nXDG_MUSIC_DIR=\"$HOME/Music\"\n",
         home + "/Bureau"},
        {"absolute", "XDG_DESKTOP_DIR=\"/srv/desk\"\n", "/srv/desk"},
        {"escaped", "XDG_DESKTOP_DIR=\"$HOME/My \\\"Desk\\\"\"\n", home + "/My \"Desk\""},
        {"home itself", "XDG_DESKTOP_DIR=\"$HOME\"\n", home},
        {"later line wins", "XDG_DESKTOP_DIR=\"/a\"\nXDG_DESKTOP_DIR=\"/b\"\n", "/b"},
        {"relative is refused", "XDG_DESKTOP_DIR=\"Desk\"\n", home + "/Desktop"},
        {"other variable", "XDG_DESKTOP_DIRECTORY=\"/x\"\n", home + "/Desktop"},
        {"unquoted", "XDG_DESKTOP_DIR=$HOME/x\n", home + "/Desktop"},
        {"unterminated", "XDG_DESKTOP_DIR=\"$HOME/x\n", home + "/Desktop"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        std::remove((temp / "config/user-dirs.dirs").c_str());
        if (row.userDirs)
            temp.WriteFile("config/user-dirs.dirs", *row.userDirs);
        const auto desktop = SpecialFolder::Desktop();
        ASSERT_NE(desktop, nullptr);
        EXPECT_EQ(desktop->NativePath(), row.desktop);
        EXPECT_FALSE(Item(home + "/Desktop")->Exists()) << "the desktop is never created";
    }
}

}  // namespace
