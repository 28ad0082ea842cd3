// Preference domains as property-list files under the XDG configuration folder:
// D.plist for the current user on any host, ByHost/D.<machine-id>.plist for this
// host, .GlobalPreferences.plist for any application, and the first of
// $XDG_CONFIG_DIRS (default /etc/xdg) for any user.
//
// Synchronising a domain takes an exclusive flock on D.plist.lock (the kernel
// drops it if the holder dies), reads the file again, applies this process's
// changed keys one by one, and publishes the result through a 0600 temporary
// file in the same folder: write, fsync, rename, fsync of the folder. A crash at
// any moment leaves the old file or the new one; a result equal to the file
// writes nothing; a damaged file is kept beside the new one as D.plist.corrupt.
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <set>

#include "platform/LogSink.h"
#include "platform/PreferenceStore.h"
#include "platform/PropertyListFile.h"
#include "platform/ServiceSlot.h"
#include "platform/linux/XdgLocationsLinux.h"

namespace platform {

namespace {

constexpr std::string_view kGlobalDomainFile = ".GlobalPreferences";
constexpr const char* kDamagedFile = "Preferences file is damaged and was read as empty: ";
constexpr const char* kUnreadableFile =
    "Preferences file could not be read and was read as empty: ";

// The first of $XDG_CONFIG_DIRS, where settings for every user live.
std::string SystemConfigFolder() {
    const char* value = std::getenv("XDG_CONFIG_DIRS");
    // Relative paths in the XDG variables are to be ignored.
    const std::string dirs = value != nullptr && value[0] == '/' ? value : "/etc/xdg";
    return dirs.substr(0, dirs.find(':'));
}

std::string MachineId() {
    std::string id;
    std::ifstream("/etc/machine-id") >> id;
    return id.empty() ? "localhost" : id;
}

std::string DomainPath(const std::string& domain, const std::string& user,
                       const std::string& host) {
    const std::string name =
        domain == kCFPreferencesAnyApplication ? std::string(kGlobalDomainFile) : domain;
    std::string folder;
    if (user == kCFPreferencesAnyUser) {
        folder = SystemConfigFolder();
    } else {
        folder = xdg::ConfigHome();
    }
    if (host == kCFPreferencesCurrentHost)
        return folder + "/ByHost/" + name + "." + MachineId() + ".plist";
    return folder + "/" + name + ".plist";
}

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.find_last_of('/'));
}

// Makes the folder and its parents, private to the user where it makes them.
bool MakeFolders(const std::string& folder) {
    struct stat status {};
    if (stat(folder.c_str(), &status) == 0)
        return S_ISDIR(status.st_mode);
    if (!MakeFolders(FolderOf(folder)))
        return false;
    return mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST;
}

class FileDescriptor {
  public:
    explicit FileDescriptor(int fd = -1) : fd_(fd) {}
    ~FileDescriptor() {
        if (fd_ >= 0)
            close(fd_);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const { return fd_; }

  private:
    int fd_;
};

bool WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

// Writes the value beside path and renames it over path; false on any failure,
// leaving path as it was and no temporary file behind.
bool Publish(const std::string& path, const PropertyListValue& value, bool keepOldAsCorrupt) {
    std::string temporary = path + ".tmp.XXXXXX";
    const FileDescriptor fd(mkstemp(temporary.data()));  // mode 0600 whatever the umask
    if (fd.get() < 0)
        return false;
    const bool written = WriteAll(fd.get(), PropertyListToXml(value)) && fsync(fd.get()) == 0;
    if (!written || (keepOldAsCorrupt && rename(path.c_str(), (path + ".corrupt").c_str()) != 0) ||
        rename(temporary.c_str(), path.c_str()) != 0) {
        unlink(temporary.c_str());
        return false;
    }
    const FileDescriptor folder(open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.get() >= 0)
        fsync(folder.get());
    return true;
}

// Temporary files of writers that died while publishing. Only the holder of the
// lock writes one, so under the lock every one there is stale.
void RemoveStaleTemporaries(const std::string& path) {
    const std::string prefix = path.substr(path.find_last_of('/') + 1) + ".tmp.";
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(FolderOf(path).c_str()), closedir);
    if (folder == nullptr)
        return;
    while (const dirent* entry = readdir(folder.get())) {
        if (std::string_view(entry->d_name).starts_with(prefix)) {
            unlinkat(dirfd(folder.get()), entry->d_name, 0);
        }
    }
}

struct DomainView {
    bool loaded = false;
    bool complained = false;
    PropertyListValue values = PropertyListValue::Dictionary();
    // Keys this process set (a value) or removed (nullopt) since the last synchronisation.
    std::map<std::string, std::optional<PropertyListValue>> changed;
};

class PlistFileStore final : public PreferenceStore {
  public:
    std::optional<PropertyListValue> CopyValue(const std::string& key, const std::string& domain,
                                               const std::string& user,
                                               const std::string& host) override {
        DomainView& view = ViewOf(DomainPath(domain, user, host));
        const auto change = view.changed.find(key);
        if (change != view.changed.end())
            return change->second;
        const PropertyListValue* value = view.values.Find(key);
        return value != nullptr ? std::optional(*value) : std::nullopt;
    }

    void SetValue(const std::string& key, const std::optional<PropertyListValue>& value,
                  const std::string& domain, const std::string& user,
                  const std::string& host) override {
        ViewOf(DomainPath(domain, user, host)).changed[key] = value;
    }

    void SetMultiple(const std::vector<std::string>& keysToRemove, const std::string& domain,
                     const std::string& user, const std::string& host) override {
        DomainView& view = ViewOf(DomainPath(domain, user, host));
        for (const std::string& key : keysToRemove)
            view.changed[key] = std::nullopt;
    }

    bool Synchronize(const std::string& domain, const std::string& user,
                     const std::string& host) override {
        return SynchronizePath(DomainPath(domain, user, host));
    }

    bool SynchronizeDefaults() override {
        bool synchronized = true;
        for (auto& [path, view] : views_) {
            if (!view.changed.empty())
                synchronized = SynchronizePath(path) && synchronized;
        }
        return synchronized;
    }

  private:
    DomainView& ViewOf(const std::string& path) {
        DomainView& view = views_[path];
        if (!view.loaded) {
            view.values = ReadDomain(ReadPropertyList(path), path, view)
                              .value_or(PropertyListValue::Dictionary());
            view.loaded = true;
        }
        return view;
    }

    // The domain's dictionary on disk: empty when there is no file; nullopt when
    // the file is damaged or unreadable (said once per domain).
    std::optional<PropertyListValue> ReadDomain(PropertyListRead&& read, const std::string& path,
                                                DomainView& view) {
        if (read.status == PropertyListRead::Status::kMissing)
            return PropertyListValue::Dictionary();
        if (read.status == PropertyListRead::Status::kRead &&
            read.value->kind() == PropertyListValue::Kind::kDictionary) {
            return std::move(read.value);
        }
        if (!view.complained) {
            view.complained = true;
            CurrentLogSink().Write((read.status == PropertyListRead::Status::kUnreadable
                                        ? kUnreadableFile
                                        : kDamagedFile) +
                                   path);
        }
        return std::nullopt;
    }

    bool SynchronizePath(const std::string& path) {
        // The file is read under the lock below: a view not yet loaded need not
        // read it first.
        DomainView& view = views_[path];
        if (!MakeFolders(FolderOf(path)))
            return false;
        const FileDescriptor lock(
            open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        if (lock.get() < 0)
            return false;
        while (flock(lock.get(), LOCK_EX) != 0) {
            if (errno != EINTR)
                return false;
        }
        RemoveStaleTemporaries(path);
        PropertyListRead read = ReadPropertyList(path);
        const PropertyListRead::Status status = read.status;
        if (status == PropertyListRead::Status::kUnreadable)
            return false;
        std::optional<PropertyListValue> onDisk = ReadDomain(std::move(read), path, view);
        const bool damaged = !onDisk.has_value();
        PropertyListValue merged = damaged ? PropertyListValue::Dictionary() : std::move(*onDisk);
        bool differs = false;
        for (const auto& [key, value] : view.changed) {
            const PropertyListValue* old = merged.Find(key);
            differs = differs || (value ? old == nullptr || *old != *value : old != nullptr);
            merged.Set(key, value ? &*value : nullptr);
        }
        bool write = false;
        if (status == PropertyListRead::Status::kMissing) {
            write = !merged.Entries().empty();
        } else if (damaged) {
            write = !view.changed.empty();  // a damaged file stays until there is something to keep
        } else {
            write = differs;
        }
        if (write && !Publish(path, merged, /*keepOldAsCorrupt=*/damaged)) {
            return false;
        }
        view.values = std::move(merged);
        view.loaded = true;
        view.changed.clear();
        return true;
    }

    std::map<std::string, DomainView> views_;
};

ServiceSlot<PreferenceStore> slot;

}  // namespace

PreferenceStore& CurrentPreferenceStore() {
    static PlistFileStore own;
    return slot.Current(own);
}

void InstallPreferenceStore(PreferenceStore* store) {
    slot.Install(store);
}

}  // namespace platform
