#include "runtime/FolderItem.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "fakes/RecordingFileSystem.h"
#include "fakes/ScopedEnvironment.h"
#include "fakes/TempFolder.h"
#include "runtime/BinaryStream.h"
#include "runtime/RuntimeException.h"
#include "runtime/SpecialFolder.h"

namespace {

using Raise = std::pair<int64_t, std::string>;

std::shared_ptr<FolderItem> Item(const std::string& path) {
    return std::make_shared<FolderItem>(path);
}

// The number and text of the IOException that run raises; {0, ""} when none.
template <typename Run>
Raise Raised(Run run) {
    try {
        run();
    } catch (const IOException& error) {
        return {error.ErrorNumber(), error.Message()};
    }
    return {0, ""};
}

// What a failure with this errno raises: the code and the system's text for it.
Raise Failure(int error) {
    return {error, error != 0 ? std::strerror(error) : ""};
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
        const char* resolved;  // what Child gives when it resolves links
    };
    const Row rows[] = {
        {"file.txt", true, false, 5, "file.txt", "file.txt"},
        {"empty", true, false, 0, "empty", "empty"},
        {"folder", true, true, 0, "folder", "folder"},
        {"folder/", true, true, 0, "folder", "folder/"},
        // A link is looked at itself: its length is that of the path it holds.
        {"folder-link", true, false, 6, "folder-link", "folder"},
        {"file-link", true, false, 8, "file-link", "file.txt"},
        {"dangling", true, false, 14, "dangling", "dangling"},
        {"missing", false, false, 0, "missing", "missing"},
        {"file.txt/under-a-file", false, false, 0, "under-a-file", "file.txt/under-a-file"},
    };
    const auto folder = Item(temp.Path());
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        const auto item = Item(temp / row.path);
        EXPECT_EQ(item->Exists(), row.exists);
        EXPECT_EQ(item->LastErrorCode(), 0) << "a missing item is no failure";
        EXPECT_EQ(item->IsFolder(), row.isFolder);
        EXPECT_EQ(item->Length(), row.length);
        EXPECT_EQ(item->Name(), row.name);
        EXPECT_EQ(folder->Child(row.path, false)->NativePath(), temp / row.path);
        EXPECT_EQ(folder->Child(row.path, true)->NativePath(), temp / row.resolved);
    }
    const auto missing = Item(temp / "missing");
    missing->Length();
    EXPECT_EQ(missing->LastErrorCode(), ENOENT);
    // Listing with resolution gives each link's target, when it has one.
    std::multiset<std::string> resolved;
    for (const auto& child : folder->Children(true))
        resolved.insert(child->NativePath());
    std::multiset<std::string> expected;
    for (const char* name : {"file.txt", "file.txt", "empty", "folder", "folder", "dangling"})
        expected.insert(temp / name);
    EXPECT_EQ(resolved, expected);
}

// Children, Count and TrueItem agree on what a folder holds, or on why it cannot
// be listed; a listing never looks at the entries themselves.
TEST(FolderItem, ListingsGiveEachEntryOnceOrTheErrno) {
    TempFolder temp;
    std::multiset<std::string> many;
    // Enough entries, with long names, to need several reads of the folder.
    for (int i = 0; i < 1500; ++i) {
        const std::string name = "entry-with-a-rather-long-name-" + std::to_string(i);
        temp.WriteFile("many/" + name, "x");
        many.insert(name);
    }
    temp.MakeFolder("many/sub");
    temp.MakeLink("many/link", "sub");
    temp.WriteFile("many/.hidden", "");
    many.insert({"sub", "link", ".hidden"});
    temp.MakeFolder("empty");
    temp.WriteFile("file", "x");
    temp.MakeLink("link", "many");
    struct Row {
        const char* path;
        std::multiset<std::string> names;
        int error;
    };
    const Row rows[] = {{"many", many, 0},
                        {"empty", {}, 0},
                        {"missing", {}, ENOENT},
                        {"file", {}, ENOTDIR},
                        {"link", {}, ENOTDIR}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        const auto folder = Item(temp / row.path);
        std::multiset<std::string> names;
        {
            RecordingFileSystem recording;
            const auto children = folder->Children(false);
            EXPECT_EQ(recording.counts.openFolder, 0) << "nothing is read before the iteration";
            EXPECT_EQ(Raised([&] {
                          for (const auto& child : children)
                              names.insert(child->Name());
                      }),
                      Failure(row.error));
            EXPECT_EQ(recording.counts.openFolder, 1);
            EXPECT_EQ(recording.counts.status + recording.counts.statEntry, 0);
        }
        EXPECT_EQ(names, row.names);
        EXPECT_EQ(folder->LastErrorCode(), row.error);
        const int64_t count = folder->Count();
        EXPECT_EQ(count, static_cast<int64_t>(row.names.size()));
        EXPECT_EQ(folder->LastErrorCode(), row.error);
        EXPECT_EQ(TrueItemNames(folder), row.names);
        EXPECT_EQ(folder->TrueItem(0), nullptr);
        EXPECT_EQ(folder->TrueItem(count + 1), nullptr);
    }
    // Going back reads the folder again from the start.
    const auto folder = Item(temp / "many");
    const std::string second = folder->TrueItem(2)->Name();
    const std::string first = folder->TrueItem(1)->Name();
    EXPECT_EQ(folder->TrueItem(2)->Name(), second);
    EXPECT_EQ(folder->TrueItem(1)->Name(), first);
    EXPECT_NE(first, second);
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

TEST(BinaryStream, WritesOrRaises) {
    TempFolder temp;
    temp.MakeFolder("a-folder");
    temp.WriteFile("old.txt", "old contents");
    EXPECT_THROW(BinaryStream::Create(nullptr, true), NilObjectException);
    // An existing file that may not be overwritten is refused with a code of its own.
    EXPECT_EQ(Raised([&] { BinaryStream::Create(Item(temp / "old.txt"), false); }).first, 104);
    EXPECT_EQ(temp.ReadFile("old.txt"), "old contents");
    struct Row {
        const char* path;
        int error;
    };
    const Row rows[] = {{"no/such/folder/file", ENOENT}, {"a-folder", EISDIR}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        const auto file = Item(temp / row.path);
        EXPECT_EQ(Raised([&] { BinaryStream::Create(file, true); }), Failure(row.error));
        EXPECT_EQ(file->LastErrorCode(), row.error);
    }
    const auto stream = BinaryStream::Create(Item(temp / "new.txt"), false);
    stream->Write("first");
    stream->Write("");
    stream->Write(" line\n");
    stream->Close();
    EXPECT_EQ(stream->LastErrorCode(), 0);
    EXPECT_EQ(temp.ReadFile("new.txt"), "first line\n");
    EXPECT_EQ(Raised([&] { stream->Write("late"); }), Raise(EBADF, ""));
}

TEST(SpecialFolder, Trashes) {
    TempFolder temp;
    ScopedEnvironment environment;
    environment.Set("HOME", temp / "home");
    // Only an absolute data home counts; the conventions say to ignore any other.
    const std::optional<std::string> ignored[] = {std::nullopt, "relative/data", ""};
    for (const auto& dataHome : ignored) {
        SCOPED_TRACE(dataHome.value_or("(unset)"));
        environment.Set("XDG_DATA_HOME", dataHome);
        const auto trash = SpecialFolder::Trash();
        ASSERT_NE(trash, nullptr);
        EXPECT_EQ(trash->NativePath(), temp / "home/.local/share/Trash/files");
    }
    // A Trash kept elsewhere through a link is given as the folder itself.
    temp.MakeFolder("elsewhere/files");
    temp.MakeLink("data/Trash/files", temp / "elsewhere/files");
    environment.Set("XDG_DATA_HOME", temp / "data");
    EXPECT_EQ(SpecialFolder::Trash()->NativePath(), temp / "elsewhere/files");

    // A volume's own Trash, or its shared one when that is sticky.
    const std::string uid = std::to_string(getuid());
    temp.MakeFolder("own/.Trash-" + uid + "/files");
    temp.MakeFolder("shared/.Trash/" + uid + "/files");
    chmod((temp / "shared/.Trash").c_str(), 01777);
    temp.MakeFolder("unsticky/.Trash/" + uid + "/files");
    struct Row {
        const char* volume;
        std::optional<std::string> trash;
    };
    const Row rows[] = {
        {"own", temp / ("own/.Trash-" + uid + "/files")},
        {"shared", temp / ("shared/.Trash/" + uid + "/files")},
        {"unsticky", std::nullopt},
        {"elsewhere", std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.volume);
        const auto trash = SpecialFolder::Trash(Item(temp / row.volume));
        EXPECT_EQ(trash != nullptr ? std::optional(trash->NativePath()) : std::nullopt, row.trash);
    }
}

TEST(SpecialFolder, DesktopFromUserDirs) {
    TempFolder temp;
    ScopedEnvironment environment;
    const std::string home = temp / "home";
    environment.Set("HOME", home);
    environment.Set("XDG_CONFIG_HOME", temp / "config");
    struct Row {
        const char* label;
        const char* userDirs;
        std::string desktop;
    };
    const Row rows[] = {
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
        temp.WriteFile("config/user-dirs.dirs", row.userDirs);
        const auto desktop = SpecialFolder::Desktop();
        ASSERT_NE(desktop, nullptr);
        EXPECT_EQ(desktop->NativePath(), row.desktop);
    }
}

}  // namespace
