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
#include <functional>
#include <iterator>
#include <optional>
#include <string>
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

// The measurement told step by step over the file layer's own objects: count the
// folder, list it, descend into what IsFolder calls a folder with counters of its
// own, count anything else by its lengths. The walk must agree with it exactly.
void Described(const std::shared_ptr<FolderItem>& folder, Sizes& sizes) {
    sizes.folderCount += 1;
    for (const auto& entry : folder->Children(false)) {
        if (entry->IsFolder()) {
            Sizes local;
            Described(entry, local);
            sizes.dataSize += local.dataSize;
            sizes.resourceSize += local.resourceSize;
            sizes.fileCount += local.fileCount;
            sizes.folderCount += local.folderCount;
        } else {
            sizes.dataSize += static_cast<double>(entry->Length());
            sizes.resourceSize += static_cast<double>(PhysicalFileResLengthMBS(entry));
            sizes.fileCount += 1;
        }
    }
}

Sizes Describe(const std::shared_ptr<FolderItem>& folder) {
    Sizes sizes;
    Described(folder, sizes);
    return sizes;
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

TEST(FolderItemSize, TreesMeasureAsDescribed) {
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
        {"a link to a folder is a file of its own length",
         {"big/data=5000", "shortcut->big"},
         {5003, 0, 2, 2}},
        {"a link loop ends", {"loop/self->.", "loop/up->..", "a->b", "b->a"}, {5, 0, 4, 2}},
        {"hidden entries count", {".cache/x=7", ".y=1"}, {8, 0, 2, 2}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        TempFolder temp;
        Lay(temp, row.tree);
        const auto root = Item(temp / "root");
        EXPECT_EQ(Measure(root), row.expected);
        EXPECT_EQ(Describe(root), row.expected);
        EXPECT_EQ(SizeZRV(root), row.expected.dataSize);
    }
}

TEST(FolderItemSize, CountersOnlyGrow) {
    TempFolder temp;
    Lay(temp, {"a=10", "sub/b=20"});
    double dataSize = 1;
    double resourceSize = 2;
    int64_t fileCount = 3;
    int64_t folderCount = 4;
    CalcFolderItem(Item(temp / "root"), dataSize, resourceSize, fileCount, folderCount);
    EXPECT_EQ((Sizes{dataSize, resourceSize, fileCount, folderCount}), (Sizes{31, 2, 5, 6}));
    EXPECT_THROW(CalcFolderItem(nullptr, dataSize, resourceSize, fileCount, folderCount),
                 NilObjectException);
    EXPECT_THROW(SizeAsDictionaryZRV(nullptr), NilObjectException);
}

TEST(FolderItemSize, SizeOfSingleItems) {
    TempFolder temp;
    temp.WriteFile("file", std::string(100, 'x'));
    temp.MakeLink("link", "file");
    temp.MakeFolder("folder");
    temp.WriteFile("folder/inner", std::string(42, 'x'));
    struct Row {
        const char* path;
        double size;
    };
    const Row rows[] = {{"file", 100}, {"link", 4}, {"folder", 42}, {"missing", 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        const auto item = Item(temp / row.path);
        EXPECT_EQ(SizeZRV(item), row.size);
    }
    EXPECT_EQ(SizeZRV(nullptr), 0.0);
    const auto file = Item(temp / "file");
    EXPECT_EQ(PhysicalFileTotalLengthMBS(file), 100);
    EXPECT_EQ(PhysicalFileResLengthMBS(file), 0);
    EXPECT_EQ(PhysicalFileTotalLengthMBS(Item(temp / "missing")), 0);
    EXPECT_THROW(PhysicalFileTotalLengthMBS(nullptr), NilObjectException);
    EXPECT_THROW(PhysicalFileResLengthMBS(nullptr), NilObjectException);
}

// Runs the measurement in a forked child without privileges (the superuser could
// read anything) and expects it to raise IOException with the error given.
void ExpectMeasurementFails(const std::function<void()>& measure, int error) {
    EXPECT_EXIT(
        {
            DropRootPrivileges();
            int code = 1;
            try {
                measure();
            } catch (const IOException& failure) {
                code = failure.ErrorNumber() == error && failure.Message() == std::strerror(error)
                           ? 0
                           : 2;
            }
            std::_Exit(code);
        },
        testing::ExitedWithCode(0), "");
}

TEST(FolderItemSize, UnlistableFolderEndsTheMeasurement) {
    TempFolder temp;
    Lay(temp, {"a=10", "sub/b=20", "sub/locked/c=30", "sub/z/d=1"});
    chmod((temp / "root/sub/locked").c_str(), 0);
    const auto root = Item(temp / "root");
    ExpectMeasurementFails([&] { SizeZRV(root); }, EACCES);
    ExpectMeasurementFails([&] { SizeAsDictionaryZRV(root); }, EACCES);
    const auto locked = Item(temp / "root/sub/locked");
    ExpectMeasurementFails([&] { SizeZRV(locked); }, EACCES);
    const auto missing = Item(temp / "root/missing");
    ExpectMeasurementFails([&] { SizeAsDictionaryZRV(missing); }, ENOENT);
}

TEST(FolderItemSize, FailureToEnterAFolderThatIsThereRaises) {
    TempFolder temp;
    Lay(temp, {"a=10", "sub/b=20", "sub/broken/c=30"});
    RecordingFileSystem recording;
    recording.enterFailures["broken"] = EIO;
    const auto root = Item(temp / "root");
    try {
        SizeAsDictionaryZRV(root);
        ADD_FAILURE() << "no exception";
    } catch (const IOException& failure) {
        EXPECT_EQ(failure.ErrorNumber(), EIO);
        EXPECT_EQ(failure.Message(), std::strerror(EIO));
    }
    EXPECT_THROW(SizeZRV(root), IOException);
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

TEST(FolderItemSize, DeepCombMeasuresAsDescribed) {
    TempFolder temp;
    temp.MakeFolder("root");
    constexpr int64_t kDepth = 150;  // deep enough to pass the levels that keep their descriptor
    LayChain(temp / "root", kDepth, /*comb=*/true);
    const auto root = Item(temp / "root");
    const Sizes expected{kDepth * 5.0, 0, kDepth * 3, 1 + kDepth * 3};
    const int before = OpenDescriptors();
    EXPECT_EQ(Measure(root), expected);
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_EQ(Describe(root), expected);
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
