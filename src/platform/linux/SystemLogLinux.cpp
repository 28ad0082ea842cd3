// The Linux log: each entry to standard error, as its text and one line feed,
// and to syslog under the ident "larkfen-helper".
#include <syslog.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "platform/LogSink.h"
#include "platform/ServiceSlot.h"

namespace platform {

namespace {

class SystemLog final : public LogSink {
  public:
    SystemLog() { openlog("larkfen-helper", LOG_PID, LOG_USER); }

    void Write(std::string_view entry) override {
        std::string line(entry);
        line.push_back('\n');
        std::fwrite(line.data(), 1, line.size(), stderr);
        std::fflush(stderr);
        syslog(LOG_NOTICE, "%.*s", static_cast<int>(entry.size()), entry.data());
    }

    void Flush() override { std::fflush(stderr); }
};

ServiceSlot<LogSink> slot;

}  // namespace

LogSink& CurrentLogSink() {
    static SystemLog own;
    return slot.Current(own);
}

void InstallLogSink(LogSink* sink) {
    slot.Install(sink);
}

}  // namespace platform
