#include "files/FolderItemSize.h"

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fakes/RecordingFileSystem.h"
#include "fakes/TempFolder.h"
#include "runtime/RuntimeException.h"
#include "runtime/Variant.h"

namespace {

using FolderItemExtension::CalcFolderItem;
using FolderItemExtension::PhysicalFileResLengthMBS;
using FolderItemExtension::PhysicalFileTotalLengthMBS;
using FolderItemExtension::SizeAsDictionaryZRV;
using FolderItemExtension::SizeZRV;

struct Sizes {
    double dataSize = 0;
    double resourceSize = 0;
    int64_t fileCount = 0;
    int64_t folderCount = 0;
    friend bool operator==(const Sizes&, const Sizes&) = default;
};

std::ostream& operator<<(std::ostream& out, const Sizes& sizes) {
    return out << "{data " << sizes.dataSize << ", resource " << sizes.resourceSize << ", files "
               << sizes.fileCount << ", folders " << sizes.folderCount << "}";
}

std::shared_ptr<FolderItem> Item(const std::string& path) {
    return std::make_shared<FolderItem>(path);
}

// The measurement as the dictionary gives it, checking its keys, order and types.
Sizes Measure(const std::shared_ptr<FolderItem>& folder) {
    const auto sizes = SizeAsDictionaryZRV(folder);
    const char* keys[] = {"data_size", "resource_size", "file_count", "folder_count"};
    const int types[] = {kTypeDouble, kTypeDouble, kTypeInt64, kTypeInt64};
    EXPECT_EQ(sizes->KeyCount(), 4);
    for (int64_t i = 0; i < 4 && i < sizes->KeyCount(); ++i) {
        EXPECT_EQ(VariantToString(sizes->Key(i)), keys[i]);
        EXPECT_EQ(VarType(sizes->Value(sizes->Key(i))), types[i]) << keys[i];
    }
    return {VariantToDouble(sizes->Value(StringToVariant("data_size"))),
            VariantToDouble(sizes->Value(StringToVariant("resource_size"))),
            VariantToInt64(sizes->Value(StringToVariant("file_count"))),
            VariantToInt64(sizes->Value(StringToVariant("folder_count")))};
}

// Lays out a tree from lines: "path/" a folder, "path=N" a file of N bytes,
// "path->target" a link.
void Lay(const TempFolder& temp, const std::vector<std::string>& lines) {
    temp.MakeFolder("root");
    for (const std::string& line : lines) {
        const std::string root = "root/";
        if (const size_t arrow = line.find("->"); arrow != std::string::npos) {
            temp.MakeLink(root + line.substr(0, arrow), line.substr(arrow + 2));
        } else if (const size_t equals = line.find('='); equals != std::string::npos) {
            temp.WriteFile(root + line.substr(0, equals),
                           std::string(std::stoul(line.substr(equals + 1)), 'x'));
        } else {
            temp.MakeFolder(root + line);
        }
    }
}

TEST(FolderItemSize, Trees) {
    struct Row {
        const char* label;
        std::vector<std::string> tree;
        Sizes expected;
    };
    const Row rows[] = {
        {"empty folder", {}, {0, 0, 0, 1}},
        {"one empty folder", {"inner/"}, {0, 0, 0, 2}},
        {"files spread over a subfolder", {"a=10", "sub/b=20", "sub/c=30"}, {60, 0, 3, 2}},
        {"empty files count", {"a=0", "b=0", "deep/er/c=0"}, {0, 0, 3, 3}},
        {"a bundle is walked like any folder",
         {"Viewer.app/Contents/Info.plist=100", "Viewer.app/Contents/MacOS/viewer=1000",
          "Viewer.app/Contents/Resources/"},
         {1100, 0, 2, 5}},
        // A link counts as a file of its own length, never as what it points to.
        {"a link loop ends", {"loop/self->.", "loop/up->..", "a->b", "b->a"}, {5, 0, 4, 2}},
        {"hidden entries count", {".cache/x=7", ".y=1"}, {8, 0, 2, 2}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        TempFolder temp;
        Lay(temp, row.tree);
        EXPECT_EQ(Measure(Item(temp / "root")), row.expected);
    }
}

// The walk adds to the caller's counters. An item that is no folder measures as
// itself, a link included, and a missing one as empty.
TEST(FolderItemSize, CountersItemsThatAreNoFolderAndNil) {
    TempFolder temp;
    Lay(temp, {"a=100", "sub/b=20", "link->a"});
    double dataSize = 1;
    double resourceSize = 2;
    int64_t fileCount = 3;
    int64_t folderCount = 4;
    CalcFolderItem(Item(temp / "root"), dataSize, resourceSize, fileCount, folderCount);
    EXPECT_EQ((Sizes{dataSize, resourceSize, fileCount, folderCount}), (Sizes{122, 2, 6, 6}));
    struct Row {
        const char* path;
        int64_t size;
    };
    const Row rows[] = {{"root/a", 100}, {"root/link", 1}, {"root/missing", 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        const auto item = Item(temp / row.path);
        EXPECT_EQ(SizeZRV(item), static_cast<double>(row.size));
        EXPECT_EQ(PhysicalFileTotalLengthMBS(item), row.size);
    }
    EXPECT_EQ(SizeZRV(nullptr), 0.0);
    EXPECT_THROW(CalcFolderItem(nullptr, dataSize, resourceSize, fileCount, folderCount),
                 NilObjectException);
    EXPECT_THROW(SizeAsDictionaryZRV(nullptr), NilObjectException);
    EXPECT_THROW(PhysicalFileTotalLengthMBS(nullptr), NilObjectException);
    EXPECT_THROW(PhysicalFileResLengthMBS(nullptr), NilObjectException);
}

// The number and text of the IOException that run raises; {0, ""} when none.
template <typename Run>
std::pair<int64_t, std::string> Raised(Run run) {
    try {
        run();
    } catch (const IOException& failure) {
        return {failure.ErrorNumber(), failure.Message()};
    }
    return {0, ""};
}

TEST(FolderItemSize, FolderThatCannotBeListedRaises) {
    TempFolder temp;
    temp.MakeFolder("locked");
    chmod((temp / "locked").c_str(), 0);
    const std::pair<int64_t, std::string> denied{EACCES, std::strerror(EACCES)};
    // Without privileges, in a child: the superuser could read it.
    EXPECT_EXIT(
        {
            DropRootPrivileges();
            std::_Exit(Raised([&] { SizeZRV(Item(temp / "locked")); }) == denied ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EQ(Raised([&] { SizeAsDictionaryZRV(Item(temp / "missing")); }),
              (std::pair<int64_t, std::string>{ENOENT, std::strerror(ENOENT)}));
}

TEST(FolderItemSize, VanishingEntriesCountAsEmptyFiles) {
    TempFolder temp;
    Lay(temp, {"kept=10", "gone-file=20", "gone-folder/inner=30", "gone-folder/sub/x=1",
               "sub/gone-link->kept"});
    std::vector<std::string> removed;
    RecordingFileSystem recording;
    recording.beforeEntry = [&](std::string_view name) {
        if (!name.starts_with("gone"))
            return;
        removed.emplace_back(name);
        std::filesystem::path path = temp / "root";
        path /= name == "gone-link" ? "sub/gone-link" : std::string(name);
        std::filesystem::remove_all(path);
    };
    // Each entry that goes between the listing and the look at it is still an entry
    // that is no folder, with nothing in it, as Length answers for a missing item.
    EXPECT_EQ(Measure(Item(temp / "root")), (Sizes{10, 0, 4, 2}));
    EXPECT_EQ(removed.size(), 3U);
}

TEST(FolderItemSize, LooksAtEachEntryAtMostOnce) {
    TempFolder temp;
    std::vector<std::string> tree;
    for (int i = 0; i < 20; ++i) {
        tree.push_back("f" + std::to_string(i) + "=" + std::to_string(i));
        tree.push_back("d" + std::to_string(i) + "/g=1");
        tree.push_back("d" + std::to_string(i) + "/e/");
    }
    tree.emplace_back("link->d0");
    Lay(temp, tree);
    RecordingFileSystem recording;
    EXPECT_EQ(Measure(Item(temp / "root")), (Sizes{190 + 20 + 2, 0, 41, 41}));
    EXPECT_EQ(recording.counts.openFolder, 1);
    EXPECT_EQ(recording.counts.statFolderEntry, 0);
    EXPECT_LE(recording.counts.statEntry, 41);
    EXPECT_EQ(recording.counts.enter, 40);
    EXPECT_EQ(recording.counts.leave, 40);
}

// A chain of folders "d" depth levels deep below root, each holding a file "f" of
// one byte and, when comb is set, two sibling folders with a file each, so that
// the listing of every level must carry on after the way back up.
void LayChain(const std::string& root, int depth, bool comb) {
    int fd = open(root.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_GE(fd, 0);
    for (int level = 0; level < depth; ++level) {
        const int file = openat(fd, "f", O_WRONLY | O_CREAT, 0644);
        ASSERT_GE(file, 0);
        ASSERT_EQ(write(file, "x", 1), 1);
        close(file);
        if (comb) {
            for (const char* sibling : {"a", "z"}) {
                ASSERT_EQ(mkdirat(fd, sibling, 0755), 0);
                const int inner = openat(fd, sibling, O_RDONLY | O_DIRECTORY);
                const int leaf = openat(inner, "leaf", O_WRONLY | O_CREAT, 0644);
                ASSERT_EQ(write(leaf, "yy", 2), 2);
                close(leaf);
                close(inner);
            }
        }
        ASSERT_EQ(mkdirat(fd, "d", 0755), 0);
        const int child = openat(fd, "d", O_RDONLY | O_DIRECTORY);
        ASSERT_GE(child, 0);
        close(fd);
        fd = child;
    }
    close(fd);
}

int OpenDescriptors() {
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return static_cast<int>(std::distance(begin(entries), end(entries)));
}

TEST(FolderItemSize, DeepCombCarriesOnAfterEachWayBackUp) {
    TempFolder temp;
    temp.MakeFolder("root");
    constexpr int64_t kDepth = 150;  // deep enough to pass the levels that keep their descriptor
    LayChain(temp / "root", kDepth, /*comb=*/true);
    const int before = OpenDescriptors();
    EXPECT_EQ(Measure(Item(temp / "root")), (Sizes{kDepth * 5.0, 0, kDepth * 3, 1 + kDepth * 3}));
    EXPECT_EQ(OpenDescriptors(), before);
}

struct DeepRun {
    std::string root;
    std::optional<Sizes> sizes;
};

void* MeasureDeepTree(void* argument) {
    auto& run = *static_cast<DeepRun*>(argument);
    try {
        run.sizes = Measure(Item(run.root));
    } catch (const RuntimeException& failure) {
        std::fprintf(stderr, "%s (%lld)\n", failure.Message().c_str(),
                     static_cast<long long>(failure.ErrorNumber()));
    }
    return nullptr;
}

// Measures in a thread under the limits of an ordinary session, 1024 descriptors
// and an 8 MiB stack; for a child process, as it lowers the process's limit. Gives
// 0 when the sizes are those expected.
int MeasureWithDefaultLimits(DeepRun& run, const Sizes& expected) {
    const rlimit descriptors{1024, 1024};
    if (setrlimit(RLIMIT_NOFILE, &descriptors) != 0)
        return 3;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 8 << 20);
    pthread_t thread;
    if (pthread_create(&thread, &attributes, MeasureDeepTree, &run) != 0)
        return 4;
    pthread_join(thread, nullptr);
    return run.sizes == expected ? 0 : 1;
}

TEST(FolderItemSize, TenThousandLevelsWithinDefaultLimits) {
    TempFolder temp;
    temp.MakeFolder("root");
    constexpr int kDepth = 10000;
    LayChain(temp / "root", kDepth, /*comb=*/false);
    DeepRun run{temp / "root", std::nullopt};
    EXPECT_EXIT(std::_Exit(MeasureWithDefaultLimits(run, {kDepth, 0, kDepth, kDepth + 1})),
                testing::ExitedWithCode(0), "");
}

}  // namespace
