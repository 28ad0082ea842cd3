// What the file layer needs of the operating system: looking at one path without
// following a link, listing folders (and walking down and up a tree with a bounded
// number of open descriptors), writing a new file, and the user's own locations.
// Abstract so that tests can watch or disturb the calls; the platform's own
// implementation lives beside this file in the platform's folder.
//
// Failures are reported as the platform's error code (errno on Linux), never
// thrown: the runtime above turns them into its exceptions.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

// What one path holds, links not followed.
struct FileStatus {
    int error = 0;                // 0, or the code of the failed look (nothing there: ENOENT)
    bool isFolder = false;        // a folder itself; a link to a folder is no folder
    uint64_t length = 0;          // bytes of the data; a link's own length; 0 for a folder
    uint64_t resourceLength = 0;  // bytes of the resource fork; 0 where there are none
};

// What a listing knows of an entry before anyone looks at it.
enum class EntryKind : uint8_t {
    kFolder,   // a folder itself, never a link
    kOther,    // a file, a link, a device, ...
    kUnknown,  // the listing could not tell: ask FolderCursor::StatEntry
};

struct FolderEntry {
    std::string_view name;  // valid until the cursor moves
    EntryKind kind = EntryKind::kUnknown;
};

// A position in a folder tree. It lists the folder it stands in, once, in the
// platform's order, and can step into a listed folder and back out to carry on
// after it. However deep it goes it holds a bounded number of descriptors.
class FolderCursor {
  public:
    virtual ~FolderCursor() = default;
    // The next entry of the current folder, "." and ".." left out. False at the end
    // of the folder, or when reading failed: then Error() says why.
    virtual bool Next(FolderEntry& entry) = 0;
    // 0, or the code of the failed read that ended the listing.
    virtual int Error() const = 0;
    // A look at the entry last given by Next, links not followed. Its error is
    // ENOENT when the entry has gone since the listing.
    virtual FileStatus StatEntry() = 0;
    // Steps into the entry last given by Next, which must be a folder (a link is
    // refused with ENOTDIR). Returns 0, or the code of the failure; after a failure
    // the cursor stands where it stood.
    virtual int Enter() = 0;
    // Steps back out to the folder the current one was entered from; listing goes
    // on after that entry. Returns 0, or the code of the failure (ENOENT when the
    // way back no longer leads to that folder); the cursor is then unusable.
    // Calling it at the folder the cursor was opened on is an error (EINVAL).
    virtual int Leave() = 0;
};

// A new file being written.
class OutputFile {
  public:
    virtual ~OutputFile() = default;
    // Appends all the bytes. Returns 0 or the code of the failure.
    virtual int Write(std::string_view bytes) = 0;
    // Closes the file; later calls of either operation give EBADF. Returns 0 or the
    // code of the failure.
    virtual int Close() = 0;
};

class FileSystem {
  public:
    virtual ~FileSystem() = default;

    // A look at the path, links not followed.
    virtual FileStatus Status(const std::string& path) = 0;
    // A cursor on the folder at path (a link is refused with ENOTDIR); nullptr with
    // error set when the folder cannot be opened.
    virtual std::unique_ptr<FolderCursor> OpenFolder(const std::string& path, int& error) = 0;
    // The path with its links resolved, when the item at path is a link whose
    // target exists; otherwise the empty text.
    virtual std::string ResolveLink(const std::string& path) = 0;
    // Creates the file at path, or empties the one that is there, for writing;
    // nullptr with error set on failure.
    virtual std::unique_ptr<OutputFile> CreateFile(const std::string& path, int& error) = 0;
    // The name a user sees for the item at path; its name on disk when there is no
    // other. Never fails.
    virtual std::string DisplayName(const std::string& path) = 0;
    // The folder that holds the trashed items of the volume whose root is given;
    // the user's own Trash for the empty text. Empty when there is none.
    virtual std::string TrashFolder(const std::string& volumeRoot) = 0;
    // The user's desktop folder, whether it exists or not; empty when the user has
    // no home.
    virtual std::string DesktopFolder() = 0;
    // The process's working folder; empty when it cannot be read.
    virtual std::string CurrentFolder() = 0;
    // The system's text for an error code.
    virtual std::string ErrorText(int error) = 0;
};

// The last component of a path in this platform's syntax, trailing separators
// left out ("/" for the root, empty for the empty path).
std::string_view BaseName(std::string_view path);
// The path of the entry called name in the folder at folderPath.
std::string ChildPath(std::string_view folderPath, std::string_view name);

// The file system in use: the one installed last, else the platform's own.
FileSystem& CurrentFileSystem();
// Replaces the file system; nullptr restores the platform's own. The caller keeps
// ownership.
void InstallFileSystem(FileSystem* fileSystem);

}  // namespace platform
