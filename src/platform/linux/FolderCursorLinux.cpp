#include "platform/linux/FolderCursorLinux.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <memory>
#include <vector>

#include "platform/linux/FileStatusLinux.h"

namespace platform {

namespace {

// Bytes asked of each getdents64 call: several hundred entries of a usual folder.
constexpr size_t kBufferSize = size_t{32} * 1024;
// The levels nearest the top keep their descriptor and what they have read ahead
// while the cursor is below them. Deeper levels give both up on the way down and
// are found again through ".." on the way up, so no tree, however deep, costs
// more than this many descriptors plus one. Real trees rarely reach this depth,
// and those that do pay three system calls more per folder below it.
constexpr size_t kHeldLevels = 64;

// A link is never entered: O_NOFOLLOW makes the kernel refuse it with ENOTDIR.
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

struct Level {
    int fd = -1;
    char* buffer = nullptr;
    size_t used = 0;
    size_t position = 0;
    // Where a level that gave up its descriptor is found again, and where its
    // listing goes on: the offset that getdents64 gave for the entry after the
    // one entered.
    dev_t device = 0;
    ino_t inode = 0;
    off_t resume = 0;
};

bool IsDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

EntryKind KindOf(unsigned char type) {
    switch (type) {
        case DT_DIR:
            return EntryKind::kFolder;
        case DT_UNKNOWN:
            return EntryKind::kUnknown;
        default:
            return EntryKind::kOther;
    }
}

class FolderCursorLinux final : public FolderCursor {
  public:
    explicit FolderCursorLinux(int fd) { levels_.push_back(Level{fd, BufferFor(0)}); }
    ~FolderCursorLinux() override {
        for (const Level& level : levels_) {
            if (level.fd >= 0)
                close(level.fd);
        }
    }
    FolderCursorLinux(const FolderCursorLinux&) = delete;
    FolderCursorLinux& operator=(const FolderCursorLinux&) = delete;

    bool Next(FolderEntry& entry) override {
        if (error_ != 0)
            return false;
        Level& level = levels_.back();
        for (;;) {
            if (level.position >= level.used && !Fill(level))
                return false;
            // getdents64 lays its records out aligned for struct dirent64.
            auto* record = reinterpret_cast<dirent64*>(level.buffer + level.position);
            level.position += record->d_reclen;
            if (IsDotOrDotDot(record->d_name))
                continue;
            current_ = record;
            entry.name = record->d_name;
            entry.kind = KindOf(record->d_type);
            return true;
        }
    }

    int Error() const override { return error_; }

    FileStatus StatEntry() override {
        if (current_ == nullptr)
            return FileStatusFromError(EINVAL);
        struct stat info {};
        if (fstatat(levels_.back().fd, current_->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
            return FileStatusFromError(errno);
        }
        return FileStatusFromStat(info);
    }

    int Enter() override {
        if (current_ == nullptr || error_ != 0)
            return EINVAL;
        Level& level = levels_.back();
        const int child = openat(level.fd, current_->d_name, kFolderFlags);
        if (child < 0)
            return errno;
        const size_t depth = levels_.size();
        if (depth > kHeldLevels) {
            if (const int error = GiveUpDescriptor(level); error != 0) {
                close(child);
                return error;
            }
        }
        current_ = nullptr;
        levels_.push_back(Level{child, BufferFor(depth)});
        return 0;
    }

    int Leave() override {
        if (levels_.size() < 2 || error_ != 0)
            return EINVAL;
        Level& child = levels_.back();
        Level& parent = levels_[levels_.size() - 2];
        if (parent.fd < 0) {
            if (const int error = FindAgain(parent, child.fd); error != 0) {
                error_ = error;
                return error;
            }
        }
        close(child.fd);
        levels_.pop_back();
        current_ = nullptr;
        return 0;
    }

  private:
    bool Fill(Level& level) {
        const ssize_t read = getdents64(level.fd, level.buffer, kBufferSize);
        if (read <= 0) {
            if (read < 0)
                error_ = errno;
            return false;
        }
        level.used = static_cast<size_t>(read);
        level.position = 0;
        return true;
    }

    // Closes the level's descriptor, keeping what finds it again and where its
    // listing goes on (just after the entry being entered).
    int GiveUpDescriptor(Level& level) const {
        struct stat info {};
        if (fstat(level.fd, &info) != 0)
            return errno;
        level.device = info.st_dev;
        level.inode = info.st_ino;
        level.resume = static_cast<off_t>(current_->d_off);
        close(level.fd);
        level.fd = -1;
        level.used = level.position = 0;
        return 0;
    }

    // Reopens a parent through ".." of its child; the folder must be the one that
    // was left, or the walk would carry on somewhere else.
    static int FindAgain(Level& parent, int childFd) {
        const int fd = openat(childFd, "..", kFolderFlags);
        if (fd < 0)
            return errno;
        struct stat info {};
        int error = fstat(fd, &info) != 0 ? errno : 0;
        if (error == 0 && (info.st_dev != parent.device || info.st_ino != parent.inode)) {
            error = ENOENT;
        }
        if (error == 0 && lseek(fd, parent.resume, SEEK_SET) < 0)
            error = errno;
        if (error != 0) {
            close(fd);
            return error;
        }
        parent.fd = fd;
        return 0;
    }

    // Each held level reads into a buffer of its own; the levels below them are
    // read one at a time and share one. Buffers stay for the cursor's life, so a
    // walk allocates only as deep as the tree goes.
    char* BufferFor(size_t depth) {
        const size_t slot = depth < kHeldLevels ? depth : kHeldLevels;
        if (buffers_.size() <= slot)
            buffers_.resize(slot + 1);
        if (buffers_[slot] == nullptr) {
            // Not zeroed: only the pages that listings reach become resident.
            buffers_[slot] = std::make_unique_for_overwrite<char[]>(kBufferSize);
        }
        return buffers_[slot].get();
    }

    std::vector<Level> levels_;
    std::vector<std::unique_ptr<char[]>> buffers_;
    const dirent64* current_ = nullptr;
    int error_ = 0;
};

}  // namespace

std::unique_ptr<FolderCursor> OpenFolderCursorLinux(const std::string& path, int& error) {
    const int fd = open(path.c_str(), kFolderFlags);
    if (fd < 0) {
        error = errno;
        return nullptr;
    }
    error = 0;
    return std::make_unique<FolderCursorLinux>(fd);
}

}  // namespace platform
