// Where System.DebugLog entries go. Abstract so that tests can capture the log.
#pragma once

#include <string_view>

namespace platform {

class LogSink {
  public:
    virtual ~LogSink() = default;
    // Writes one entry; an entry may hold line feeds. Never throws.
    virtual void Write(std::string_view entry) = 0;
    // Makes sure every entry written so far has left the process.
    virtual void Flush() = 0;
};

// The sink the process logs to: the one installed last, else the platform's own.
LogSink& CurrentLogSink();
// Replaces the sink; nullptr restores the platform's own. The caller keeps ownership.
void InstallLogSink(LogSink* sink);

}  // namespace platform
