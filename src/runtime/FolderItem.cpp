#include "runtime/FolderItem.h"

#include <cerrno>
#include <utility>

#include "platform/FileSystem.h"
#include "runtime/RuntimeException.h"

namespace {

// The item that names the entry called name in folder, resolved when asked and
// when it is a link with a target.
std::shared_ptr<FolderItem> EntryItem(const std::string& folder, std::string_view name,
                                      bool resolveAliases) {
    std::string path = platform::ChildPath(folder, name);
    if (resolveAliases) {
        std::string target = platform::CurrentFileSystem().ResolveLink(path);
        if (!target.empty())
            path = std::move(target);
    }
    return std::make_shared<FolderItem>(std::move(path));
}

[[noreturn]] void ThrowListingFailure(int error) {
    throw IOException(platform::CurrentFileSystem().ErrorText(error), error);
}

}  // namespace

// FolderItemIterator

FolderItemIterator::FolderItemIterator(std::shared_ptr<FolderItem> folder,
                                       std::unique_ptr<platform::FolderCursor> cursor,
                                       bool resolveAliases)
    : folder_(std::move(folder)), cursor_(std::move(cursor)), resolveAliases_(resolveAliases) {
    Advance();
}

FolderItemIterator::FolderItemIterator(FolderItemIterator&&) noexcept = default;
FolderItemIterator& FolderItemIterator::operator=(FolderItemIterator&&) noexcept = default;
FolderItemIterator::~FolderItemIterator() = default;

FolderItemIterator& FolderItemIterator::operator++() {
    Advance();
    return *this;
}

void FolderItemIterator::Advance() {
    current_ = nullptr;
    if (cursor_ == nullptr)
        return;
    platform::FolderEntry entry;
    if (cursor_->Next(entry)) {
        current_ = EntryItem(folder_->NativePath(), entry.name, resolveAliases_);
        return;
    }
    const int error = cursor_->Error();
    cursor_ = nullptr;
    if (error != 0) {
        folder_->lastErrorCode_ = error;
        ThrowListingFailure(error);
    }
}

// FolderItemIterable

FolderItemIterator FolderItemIterable::begin() const {
    int error = 0;
    auto cursor = platform::CurrentFileSystem().OpenFolder(folder_->NativePath(), error);
    folder_->lastErrorCode_ = error;
    if (cursor == nullptr)
        ThrowListingFailure(error);
    return {folder_, std::move(cursor), resolveAliases_};
}

// FolderItem

FolderItem::FolderItem(std::string nativePath) : path_(std::move(nativePath)) {}

FolderItem::~FolderItem() = default;

bool FolderItem::Exists() {
    const platform::FileStatus status = platform::CurrentFileSystem().Status(path_);
    // Nothing there is an answer, not a failure.
    const bool absent = status.error == ENOENT || status.error == ENOTDIR;
    lastErrorCode_ = absent ? 0 : status.error;
    return status.error == 0;
}

bool FolderItem::IsFolder() {
    const platform::FileStatus status = platform::CurrentFileSystem().Status(path_);
    lastErrorCode_ = status.error;
    return status.error == 0 && status.isFolder;
}

std::string FolderItem::Name() const {
    return std::string(platform::BaseName(path_));
}

std::string FolderItem::DisplayName() {
    return platform::CurrentFileSystem().DisplayName(path_);
}

uint64_t FolderItem::Length() {
    const platform::FileStatus status = platform::CurrentFileSystem().Status(path_);
    lastErrorCode_ = status.error;
    return status.error == 0 ? status.length : 0;
}

int64_t FolderItem::Count() {
    int error = 0;
    auto cursor = platform::CurrentFileSystem().OpenFolder(path_, error);
    int64_t count = 0;
    if (cursor != nullptr) {
        platform::FolderEntry entry;
        while (cursor->Next(entry))
            ++count;
        error = cursor->Error();
    }
    lastErrorCode_ = error;
    return error == 0 ? count : 0;
}

std::shared_ptr<FolderItem> FolderItem::TrueItem(int64_t index) {
    if (index < 1)
        return nullptr;
    if (listing_ == nullptr || index <= listed_) {
        int error = 0;
        listing_ = platform::CurrentFileSystem().OpenFolder(path_, error);
        listed_ = 0;
        lastErrorCode_ = error;
        if (listing_ == nullptr)
            return nullptr;
    }
    platform::FolderEntry entry;
    while (listed_ < index) {
        if (!listing_->Next(entry)) {
            lastErrorCode_ = listing_->Error();
            listing_ = nullptr;
            return nullptr;
        }
        ++listed_;
    }
    lastErrorCode_ = 0;
    return EntryItem(path_, entry.name, /*resolveAliases=*/false);
}

std::shared_ptr<FolderItem> FolderItem::Child(const std::string& name, bool resolveAliases) {
    return EntryItem(path_, name, resolveAliases);
}

FolderItemIterable FolderItem::Children(bool resolveAliases) {
    return {SharedSelf(), resolveAliases};
}

std::string FolderItem::AbsolutePath() const {
    if (path_.starts_with('/'))
        return path_;
    return platform::ChildPath(platform::CurrentFileSystem().CurrentFolder(), path_);
}

std::shared_ptr<FolderItem> FolderItem::SharedSelf() {
    if (auto self = weak_from_this().lock())
        return self;
    // An item that nobody shares (one made on the stack) is referred to without
    // being owned: it must outlive the iteration, as any container must.
    return {std::shared_ptr<FolderItem>(), this};
}
