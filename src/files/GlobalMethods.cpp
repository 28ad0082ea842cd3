#include "files/GlobalMethods.h"

#include <unistd.h>

#include "bridge/UniversalExtension.h"
#include "platform/LogSink.h"
#include "platform/SystemInfo.h"
#include "runtime/Text.h"

namespace GlobalMethods {

namespace {

// The first three fields of a version; fields past them are dropped.
std::vector<int64_t> ThreeFields(const std::string& version) {
    std::vector<int64_t> fields = UniversalExtension::SplitIntegerArrayZRV(version, ".")->items;
    fields.resize(3, 0);
    return fields;
}

}  // namespace

int64_t CompareVersions(const std::string& first, const std::string& second) {
    const std::vector<int64_t> a = ThreeFields(first);
    const std::vector<int64_t> b = ThreeFields(second);
    for (size_t i = 0; i < 3; ++i) {
        if (b[i] < a[i])
            return 1;
        if (a[i] < b[i])
            return -1;
    }
    return 0;
}

std::string GetSystemVersion(bool numbersOnly) {
    platform::SystemInfo& system = platform::CurrentSystemInfo();
    const std::string numbers = Str(system.MajorVersion()) + "." + Str(system.MinorVersion()) +
                                "." + Str(system.BugFixVersion());
    return numbersOnly ? numbers : system.OSName() + " " + numbers;
}

bool IsAtLeastOSVersion(const std::string& version) {
    return CompareVersions(version, GetSystemVersion(true)) != 1;
}

void ForceQuit() {
    platform::CurrentLogSink().Flush();
    _exit(0);
}

}  // namespace GlobalMethods
