// A system of a chosen version, installed for the life of the object.
#pragma once

#include <string>

#include "platform/SystemInfo.h"

class FakeSystemInfo final : public platform::SystemInfo {
  public:
    FakeSystemInfo(int64_t major, int64_t minor, int64_t bugFix, std::string name)
        : major_(major), minor_(minor), bugFix_(bugFix), name_(std::move(name)) {
        platform::InstallSystemInfo(this);
    }
    ~FakeSystemInfo() override { platform::InstallSystemInfo(nullptr); }
    FakeSystemInfo(const FakeSystemInfo&) = delete;
    FakeSystemInfo& operator=(const FakeSystemInfo&) = delete;

    int64_t MajorVersion() override { return major_; }
    int64_t MinorVersion() override { return minor_; }
    int64_t BugFixVersion() override { return bugFix_; }
    std::string OSName() override { return name_; }

  private:
    int64_t major_, minor_, bugFix_;
    std::string name_;
};
