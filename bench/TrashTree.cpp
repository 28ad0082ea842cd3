#include "TrashTree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace {

// A small generator of our own: the standard distributions may differ between
// library versions, and the tree must not.
class Random {
  public:
    explicit Random(uint64_t seed) : state_(seed) {}
    uint64_t Next() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return state_;
    }
    // 0 .. bound - 1
    int Below(int bound) { return static_cast<int>(Next() % static_cast<uint64_t>(bound)); }
    bool Chance(int percent) { return Below(100) < percent; }

  private:
    uint64_t state_;
};

constexpr std::array<std::string_view, 12> kExtensions = {
    ".txt", ".pdf", ".jpg", ".png", ".mp3", ".docx", ".zip", ".json", ".html", ".js", "", ".log"};
constexpr int kMaxTreeDepth = 8;

void Check(bool ok, const std::string& what) {
    if (!ok)
        throw std::runtime_error(what + ": " + std::strerror(errno));
}

class Builder {
  public:
    Builder(int64_t files, uint64_t seed) : random_(seed), filesLeft_(files) {}

    void Root(const std::string& path) {
        Check(mkdir(path.c_str(), 0755) == 0, path);
        const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY);
        Check(fd >= 0, path);
        facts_.folders = 1;
        for (int item = 0; filesLeft_ > 0; ++item) {
            const int kind = random_.Below(100);
            if (kind < 35) {
                File(fd, item);
            } else if (kind < 45) {
                Bundle(fd, item);
            } else {
                Tree(fd, Name(item, ""), 1);
            }
        }
        close(fd);
    }

    const TrashTreeFacts& Facts() const { return facts_; }

  private:
    std::string Name(int index, std::string_view extension) {
        static constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789 _-";
        std::string name;
        const int length = 3 + random_.Below(18);
        for (int i = 0; i < length; ++i)
            name.push_back(kLetters[random_.Below(kLetters.size())]);
        name.push_back('-');
        name.append(std::to_string(index)).append(extension);
        return name;
    }

    // A length spread over six orders of magnitude, as real files are.
    off_t Length() { return (off_t{1} << random_.Below(24)) + random_.Below(1000) - 1; }

    void File(int fd, int index) {
        FileNamed(fd, Name(index, kExtensions[random_.Below(kExtensions.size())]));
    }

    void FileNamed(int fd, const std::string& name) {
        if (filesLeft_ <= 0)
            return;
        const int file = openat(fd, name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
        Check(file >= 0, name);
        Check(ftruncate(file, Length()) == 0, name);
        close(file);
        --filesLeft_;
        ++facts_.files;
    }

    void Link(int fd, const char* name, const char* target) {
        if (filesLeft_ <= 0)
            return;
        Check(symlinkat(target, fd, name) == 0, name);
        --filesLeft_;
        ++facts_.files;
    }

    // Makes and opens a folder at the given depth below the root.
    int Folder(int fd, const std::string& name, int depth) {
        Check(mkdirat(fd, name.c_str(), 0755) == 0, name);
        const int child = openat(fd, name.c_str(), O_RDONLY | O_DIRECTORY);
        Check(child >= 0, name);
        ++facts_.folders;
        if (depth > facts_.maxDepth)
            facts_.maxDepth = depth;
        return child;
    }

    // Some fifteen files a folder, and on average one subfolder, so that trees
    // are mostly shallow with a few deep ones.
    void Tree(int fd, const std::string& name, int depth) {
        const int folder = Folder(fd, name, depth);
        const int files = 4 + random_.Below(24);
        for (int i = 0; i < files; ++i)
            File(folder, i);
        const int subfolders = depth < kMaxTreeDepth ? random_.Below(3) : 0;
        for (int i = 0; i < subfolders && filesLeft_ > 0; ++i) {
            Tree(folder, Name(i, ""), depth + 1);
        }
        close(folder);
    }

    void Bundle(int fd, int index) {
        const int app = Folder(fd, Name(index, ".app"), 1);
        const int contents = Folder(app, "Contents", 2);
        FileNamed(contents, "Info.plist");
        FileNamed(contents, "PkgInfo");
        const int macos = Folder(contents, "MacOS", 3);
        FileNamed(macos, "main");
        close(macos);
        const int resources = Folder(contents, "Resources", 3);
        const int count = 20 + random_.Below(40);
        for (int i = 0; i < count; ++i)
            File(resources, i);
        const int localized = Folder(resources, "en.lproj", 4);
        for (int i = 0; i < 5; ++i)
            File(localized, i);
        close(localized);
        close(resources);
        const int frameworks = Folder(contents, "Frameworks", 3);
        const int framework = Folder(frameworks, "Core.framework", 4);
        const int versions = Folder(framework, "Versions", 5);
        const int version = Folder(versions, "A", 6);
        FileNamed(version, "Core");
        close(version);
        Link(versions, "Current", "A");
        close(versions);
        Link(framework, "Core", "Versions/Current/Core");
        close(framework);
        close(frameworks);
        close(contents);
        close(app);
    }

    Random random_;
    int64_t filesLeft_;
    TrashTreeFacts facts_;
};

}  // namespace

TrashTreeFacts MakeTrashTree(const std::string& path, int64_t files) {
    Builder builder(files, 0x9E3779B97F4A7C15ULL ^ static_cast<uint64_t>(files));
    builder.Root(path);
    return builder.Facts();
}
