#include "files/FolderItemSize.h"

#include <string>
#include <utility>
#include <vector>

#include "platform/FileSystem.h"
#include "runtime/RuntimeException.h"
#include "runtime/Variant.h"

namespace FolderItemExtension {

namespace {

constexpr const char* kNilItemMessage = "The item to measure is nil.";

struct Totals {
    double dataSize = 0;
    double resourceSize = 0;
    int64_t fileCount = 0;
    int64_t folderCount = 0;
};

// An entry that has gone since the listing, or cannot be looked at, is still an
// entry that is no folder: it counts as a file whose lengths are 0, as Length and
// the resource length report for it.
void AddFile(Totals& totals, const platform::FileStatus& status) {
    const bool seen = status.error == 0;
    totals.dataSize += static_cast<double>(seen ? status.length : 0);
    totals.resourceSize +=
        static_cast<double>(static_cast<int64_t>(seen ? status.resourceLength : 0));
    totals.fileCount += 1;
}

void AddFolder(Totals& parent, const Totals& folder) {
    parent.dataSize += folder.dataSize;
    parent.resourceSize += folder.resourceSize;
    parent.fileCount += folder.fileCount;
    parent.folderCount += folder.folderCount;
}

[[noreturn]] void ThrowListingFailure(int error) {
    throw IOException(platform::CurrentFileSystem().ErrorText(error), error);
}

// Walks the tree below the cursor's folder into root, depth first. Each folder
// below gets a frame of its own, counting itself before it is listed, and joins
// its parent's frame when it is left: the sums come out exactly as those of a
// recursive walk, Double rounding included, while depth costs a frame of heap
// rather than a frame of stack.
void Walk(platform::FolderCursor& cursor, Totals& root) {
    std::vector<Totals> frames;
    platform::FolderEntry entry;
    for (;;) {
        Totals& current = frames.empty() ? root : frames.back();
        if (!cursor.Next(entry)) {
            if (cursor.Error() != 0)
                ThrowListingFailure(cursor.Error());
            if (frames.empty())
                return;
            const Totals finished = frames.back();
            frames.pop_back();
            if (const int error = cursor.Leave(); error != 0)
                ThrowListingFailure(error);
            AddFolder(frames.empty() ? root : frames.back(), finished);
            continue;
        }
        // The listing tells a folder without a look; anything else needs one for
        // its length, and one that the listing could not tell is decided by it.
        if (entry.kind != platform::EntryKind::kFolder) {
            const platform::FileStatus status = cursor.StatEntry();
            if (status.error != 0 || !status.isFolder) {
                AddFile(current, status);
                continue;
            }
        }
        if (const int error = cursor.Enter(); error != 0) {
            // Only a folder that is still there is a failure to list; an entry that
            // has gone or turned into something else since the listing is counted
            // as what it is now.
            const platform::FileStatus status = cursor.StatEntry();
            if (status.error == 0 && status.isFolder)
                ThrowListingFailure(error);
            AddFile(current, status);
            continue;
        }
        frames.push_back(Totals{.folderCount = 1});
    }
}

Variant KeyVariant(std::string_view key) {
    return StringToVariant(std::string(key));
}

void CheckItem(const std::shared_ptr<FolderItem>& item) {
    if (item == nullptr)
        throw NilObjectException(kNilItemMessage);
}

}  // namespace

void CalcFolderItem(const std::shared_ptr<FolderItem>& folder, double& dataSize,
                    double& resourceSize, int64_t& fileCount, int64_t& folderCount) {
    CheckItem(folder);
    // The walk adds to the caller's own values, as a recursive walk would, and they
    // hold whatever was added when a failure ends it.
    Totals root{dataSize, resourceSize, fileCount, folderCount + 1};
    const auto giveBack = [&] {
        dataSize = root.dataSize;
        resourceSize = root.resourceSize;
        fileCount = root.fileCount;
        folderCount = root.folderCount;
    };
    try {
        int error = 0;
        const auto cursor = platform::CurrentFileSystem().OpenFolder(folder->NativePath(), error);
        if (cursor == nullptr)
            ThrowListingFailure(error);
        Walk(*cursor, root);
    } catch (...) {
        giveBack();
        throw;
    }
    giveBack();
}

std::shared_ptr<Dictionary> SizeAsDictionaryZRV(const std::shared_ptr<FolderItem>& item) {
    double dataSize = 0;
    double resourceSize = 0;
    int64_t fileCount = 0;
    int64_t folderCount = 0;
    CalcFolderItem(item, dataSize, resourceSize, fileCount, folderCount);
    return std::make_shared<Dictionary>(std::vector<std::pair<Variant, Variant>>{
        {KeyVariant(kDataSizeKey), DoubleToVariant(dataSize)},
        {KeyVariant(kResourceSizeKey), DoubleToVariant(resourceSize)},
        {KeyVariant(kFileCountKey), Int64ToVariant(fileCount)},
        {KeyVariant(kFolderCountKey), Int64ToVariant(folderCount)},
    });
}

double SizeZRV(const std::shared_ptr<FolderItem>& item) {
    if (item == nullptr || !item->Exists())
        return 0.0;
    if (item->IsFolder()) {
        return VariantToDouble(SizeAsDictionaryZRV(item)->Value(KeyVariant(kDataSizeKey)));
    }
    return static_cast<double>(PhysicalFileTotalLengthMBS(item));
}

int64_t PhysicalFileResLengthMBS(const std::shared_ptr<FolderItem>& item) {
    CheckItem(item);
    const platform::FileStatus status = platform::CurrentFileSystem().Status(item->NativePath());
    return status.error == 0 ? static_cast<int64_t>(status.resourceLength) : 0;
}

int64_t PhysicalFileTotalLengthMBS(const std::shared_ptr<FolderItem>& item) {
    CheckItem(item);
    const platform::FileStatus status = platform::CurrentFileSystem().Status(item->NativePath());
    return status.error == 0 ? static_cast<int64_t>(status.length + status.resourceLength) : 0;
}

}  // namespace FolderItemExtension
