// The running system's name and version. Abstract so that tests can pretend to
// run on another version.
#pragma once

#include <cstdint>
#include <string>

namespace platform {

class SystemInfo {
  public:
    virtual ~SystemInfo() = default;
    // The three leading fields of the system's dotted version; 0 where it has none.
    virtual int64_t MajorVersion() = 0;
    virtual int64_t MinorVersion() = 0;
    virtual int64_t BugFixVersion() = 0;
    // The system's name, e.g. "Debian GNU/Linux"; empty when unknown.
    virtual std::string OSName() = 0;
};

SystemInfo& CurrentSystemInfo();
// Replaces the service; nullptr restores the platform's own. The caller keeps ownership.
void InstallSystemInfo(SystemInfo* info);

}  // namespace platform
