// The system's version and name from os-release: VERSION_ID as the dotted
// version, NAME as the name.
#include <glib.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/ServiceSlot.h"
#include "platform/SystemInfo.h"

namespace platform {

namespace {

// The value of KEY= in the first os-release file there is, unquoted.
std::string OsReleaseValue(const std::string& key) {
    for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
        std::ifstream file(path);
        if (!file)
            continue;
        std::string line;
        while (std::getline(file, line)) {
            if (line.rfind(key + "=", 0) != 0)
                continue;
            const std::string raw = line.substr(key.size() + 1);
            gchar* unquoted = g_shell_unquote(raw.c_str(), nullptr);
            std::string value = unquoted != nullptr ? unquoted : raw;
            g_free(unquoted);
            return value;
        }
        return {};
    }
    return {};
}

class OsRelease final : public SystemInfo {
  public:
    OsRelease() {
        const std::string version = OsReleaseValue("VERSION_ID");
        size_t at = 0;
        for (int64_t& field : fields_) {
            if (at >= version.size())
                break;
            field = std::strtoll(version.c_str() + at, nullptr, 10);
            const size_t dot = version.find('.', at);
            at = dot == std::string::npos ? version.size() : dot + 1;
        }
        name_ = OsReleaseValue("NAME");
    }

    int64_t MajorVersion() override { return fields_[0]; }
    int64_t MinorVersion() override { return fields_[1]; }
    int64_t BugFixVersion() override { return fields_[2]; }
    std::string OSName() override { return name_; }

  private:
    std::array<int64_t, 3> fields_{};
    std::string name_;
};

ServiceSlot<SystemInfo> slot;

}  // namespace

SystemInfo& CurrentSystemInfo() {
    static OsRelease own;
    return slot.Current(own);
}

void InstallSystemInfo(SystemInfo* info) {
    slot.Install(info);
}

}  // namespace platform
