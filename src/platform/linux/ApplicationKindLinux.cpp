#include "platform/ApplicationKind.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <string_view>

#include "platform/DesktopEntry.h"

namespace platform {

namespace {

bool EndsWithIgnoringCase(std::string_view text, std::string_view suffix) {
    if (text.size() <= suffix.size())
        return false;
    const std::string_view tail = text.substr(text.size() - suffix.size());
    for (size_t i = 0; i < suffix.size(); ++i) {
        const char c = tail[i] >= 'A' && tail[i] <= 'Z' ? static_cast<char>(tail[i] + 32) : tail[i];
        if (c != suffix[i])
            return false;
    }
    return true;
}

bool IsRegularFile(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// "AI" and the type byte 1 or 2 at offset 8 mark both kinds of AppImage.
bool HasAppImageMagic(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    std::array<unsigned char, 3> magic{};
    const ssize_t got = pread(fd, magic.data(), magic.size(), 8);
    close(fd);
    return got == 3 && magic[0] == 0x41 && magic[1] == 0x49 && (magic[2] == 1 || magic[2] == 2);
}

}  // namespace

std::string BundleInfoPath(const std::string& bundlePath) {
    return bundlePath + "/Contents/Info.plist";
}

ApplicationKind KindOfApplication(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0)
        return ApplicationKind::kNone;
    if (S_ISDIR(status.st_mode)) {
        return EndsWithIgnoringCase(path, ".app") && IsRegularFile(BundleInfoPath(path))
                   ? ApplicationKind::kBundle
                   : ApplicationKind::kNone;
    }
    if (!S_ISREG(status.st_mode))
        return ApplicationKind::kNone;
    if (EndsWithIgnoringCase(path, ".desktop")) {
        const auto entry = ReadDesktopEntry(path);
        return entry && entry->type == "Application" ? ApplicationKind::kDesktopEntry
                                                     : ApplicationKind::kNone;
    }
    return HasAppImageMagic(path) ? ApplicationKind::kAppImage : ApplicationKind::kNone;
}

}  // namespace platform
