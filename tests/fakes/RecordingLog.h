// A log sink that keeps every entry, installed for the life of the object.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/LogSink.h"

class RecordingLog final : public platform::LogSink {
  public:
    RecordingLog() { platform::InstallLogSink(this); }
    ~RecordingLog() override { platform::InstallLogSink(nullptr); }
    RecordingLog(const RecordingLog&) = delete;
    RecordingLog& operator=(const RecordingLog&) = delete;

    void Write(std::string_view entry) override { entries.emplace_back(entry); }
    void Flush() override {}

    std::vector<std::string> entries;
};
