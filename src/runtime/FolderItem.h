// FolderItem: a place in the file system, named by its path. The place need not
// hold anything: an item for a missing file is an ordinary object whose Exists is
// false, and the way a new file gets made. Every question goes to the disk when it
// is asked, so an item always tells what is there now; a link is looked at itself,
// never followed, unless an operation is asked to resolve it.
//
// Operations that read the disk set LastErrorCode: 0 when they succeeded, else the
// platform's error code (errno). Only listing with Children raises; the others
// answer false, 0 or nil and leave the code to be read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "runtime/Object.h"

namespace platform {
class FolderCursor;
}

class FolderItem;

// One pass over a folder's entries, in the platform's order, each as a new
// FolderItem. Moves only forward; compares equal to std::default_sentinel at the end.
class FolderItemIterator {
  public:
    using value_type = std::shared_ptr<FolderItem>;
    using difference_type = std::ptrdiff_t;

    FolderItemIterator(std::shared_ptr<FolderItem> folder,
                       std::unique_ptr<platform::FolderCursor> cursor, bool resolveAliases);
    FolderItemIterator(FolderItemIterator&&) noexcept;
    FolderItemIterator& operator=(FolderItemIterator&&) noexcept;
    ~FolderItemIterator();

    const std::shared_ptr<FolderItem>& operator*() const { return current_; }
    // IOException (errno, the system's text) when reading the folder fails part way.
    FolderItemIterator& operator++();
    bool operator==(std::default_sentinel_t) const { return current_ == nullptr; }

  private:
    void Advance();

    std::shared_ptr<FolderItem> folder_;
    std::unique_ptr<platform::FolderCursor> cursor_;
    bool resolveAliases_;
    std::shared_ptr<FolderItem> current_;
};

// What Children gives: the folder and the flag, with nothing read from the disk
// until an iteration begins.
class FolderItemIterable {
  public:
    FolderItemIterable(std::shared_ptr<FolderItem> folder, bool resolveAliases)
        : folder_(std::move(folder)), resolveAliases_(resolveAliases) {}

    // Opens the folder for one pass. IOException with errno as ErrorNumber and the
    // system's text as Message when the folder cannot be listed (the folder's
    // LastErrorCode tells the same code).
    FolderItemIterator begin() const;
    std::default_sentinel_t end() const { return {}; }
    bool ResolveAliases() const { return resolveAliases_; }

  private:
    std::shared_ptr<FolderItem> folder_;
    bool resolveAliases_;
};

class FolderItem final : public Object, public std::enable_shared_from_this<FolderItem> {
  public:
    explicit FolderItem(std::string nativePath);
    ~FolderItem() override;
    FolderItem(const FolderItem&) = delete;
    FolderItem& operator=(const FolderItem&) = delete;

    const std::string& NativePath() const { return path_; }
    // True when anything stands at the path, a dangling link included. A missing
    // item is no failure; a path that cannot be looked at answers false and sets
    // LastErrorCode.
    bool Exists();
    // True for a folder, a bundle being one. A link to a folder is no folder. False
    // when the item cannot be looked at.
    bool IsFolder();
    // The last component of the path, with its extension.
    std::string Name() const;
    // What the user sees: a desktop entry's name, a trashed item's original name,
    // else Name(). Never fails.
    std::string DisplayName();
    // Bytes of the data: a file's length, a link's own length (the length of the
    // path it holds, not of its target), 0 for a folder; 0 when the item cannot be
    // looked at.
    uint64_t Length();
    // The number of entries directly in the folder; 0 when it cannot be listed.
    int64_t Count();
    // The entry at index, 1 the first and Count the last, a link as itself; nil out
    // of range, when the folder cannot be listed, or when it holds fewer entries by
    // now. Rising indexes read on from the previous call, so walking 1..Count reads
    // the folder once (and holds it open until the end is passed or the item goes).
    std::shared_ptr<FolderItem> TrueItem(int64_t index);
    // The entry of that name, whether it exists or not; never nil. With
    // resolveAliases a link whose target exists gives the target.
    std::shared_ptr<FolderItem> Child(const std::string& name, bool resolveAliases);
    // The folder's entries for a range-for; see FolderItemIterable::begin for the
    // failure. With resolveAliases each link whose target exists gives the target.
    // The iterable holds the item for as long as it lives, when the item is shared.
    FolderItemIterable Children(bool resolveAliases);
    // The path made absolute against the working folder when it is relative.
    std::string AbsolutePath() const;
    int64_t LastErrorCode() const { return lastErrorCode_; }

  private:
    friend class FolderItemIterable;
    friend class FolderItemIterator;
    friend class BinaryStream;

    std::shared_ptr<FolderItem> SharedSelf();

    std::string path_;
    int64_t lastErrorCode_ = 0;
    // The pass that TrueItem reads on from, and how many entries it has given.
    std::unique_ptr<platform::FolderCursor> listing_;
    int64_t listed_ = 0;
};
