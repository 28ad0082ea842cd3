// The Linux file system: lstat, getdents64 cursors, plain file writes, and the
// XDG locations of the user's Trash and desktop.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/FileSystem.h"
#include "platform/ServiceSlot.h"
#include "platform/linux/DisplayNameLinux.h"
#include "platform/linux/FileStatusLinux.h"
#include "platform/linux/FolderCursorLinux.h"
#include "platform/linux/XdgLocationsLinux.h"

namespace platform {

namespace {

// New files get what the umask leaves of read and write for everyone, as with
// any program that saves a document.
constexpr mode_t kNewFileMode = 0666;

class OutputFileLinux final : public OutputFile {
  public:
    explicit OutputFileLinux(int fd) : fd_(fd) {}
    ~OutputFileLinux() override {
        if (fd_ >= 0)
            close(fd_);
    }
    OutputFileLinux(const OutputFileLinux&) = delete;
    OutputFileLinux& operator=(const OutputFileLinux&) = delete;

    int Write(std::string_view bytes) override {
        if (fd_ < 0)
            return EBADF;
        while (!bytes.empty()) {
            const ssize_t written = write(fd_, bytes.data(), bytes.size());
            if (written < 0) {
                if (errno == EINTR)
                    continue;
                return errno;
            }
            bytes.remove_prefix(static_cast<size_t>(written));
        }
        return 0;
    }

    int Close() override {
        if (fd_ < 0)
            return EBADF;
        const int fd = fd_;
        fd_ = -1;
        // Linux releases the descriptor even when close reports an error, so it is
        // never retried; the error still says the data may not have arrived.
        return close(fd) == 0 ? 0 : errno;
    }

  private:
    int fd_;
};

class FileSystemLinux final : public FileSystem {
  public:
    FileStatus Status(const std::string& path) override {
        struct stat info {};
        if (lstat(path.c_str(), &info) != 0)
            return FileStatusFromError(errno);
        return FileStatusFromStat(info);
    }

    std::unique_ptr<FolderCursor> OpenFolder(const std::string& path, int& error) override {
        return OpenFolderCursorLinux(path, error);
    }

    std::string ResolveLink(const std::string& path) override {
        struct stat info {};
        if (lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode))
            return {};
        char* resolved = realpath(path.c_str(), nullptr);
        if (resolved == nullptr)
            return {};
        std::string target(resolved);
        std::free(resolved);  // NOLINT(cppcoreguidelines-no-malloc): realpath mallocs
        return target;
    }

    std::unique_ptr<OutputFile> CreateFile(const std::string& path, int& error) override {
        const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kNewFileMode);
        if (fd < 0) {
            error = errno;
            return nullptr;
        }
        error = 0;
        return std::make_unique<OutputFileLinux>(fd);
    }

    std::string DisplayName(const std::string& path) override { return DisplayNameLinux(path); }

    std::string TrashFolder(const std::string& volumeRoot) override {
        return volumeRoot.empty() ? xdg::UserTrashFolder() : xdg::VolumeTrashFolder(volumeRoot);
    }

    std::string DesktopFolder() override { return xdg::DesktopFolder(); }

    std::string CurrentFolder() override {
        char* folder = getcwd(nullptr, 0);
        if (folder == nullptr)
            return {};
        std::string path(folder);
        std::free(folder);  // NOLINT(cppcoreguidelines-no-malloc): getcwd mallocs
        return path;
    }

    std::string ErrorText(int error) override {
        char buffer[256];
        // The GNU strerror_r: gives either buffer or a static text.
        return strerror_r(error, buffer, sizeof buffer);
    }
};

ServiceSlot<FileSystem> slot;

}  // namespace

std::string_view BaseName(std::string_view path) {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    if (path == "/")
        return path;
    const size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string ChildPath(std::string_view folderPath, std::string_view name) {
    std::string path(folderPath);
    if (!path.empty() && path.back() != '/')
        path.push_back('/');
    path.append(name);
    return path;
}

FileSystem& CurrentFileSystem() {
    static FileSystemLinux own;
    return slot.Current(own);
}

void InstallFileSystem(FileSystem* fileSystem) {
    slot.Install(fileSystem);
}

}  // namespace platform
