#include "runtime/DebugLog.h"

#include "platform/LogSink.h"

namespace System {

void DebugLog(std::string_view text) {
    platform::CurrentLogSink().Write(text);
}

}  // namespace System
