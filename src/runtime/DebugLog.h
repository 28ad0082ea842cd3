// The agent's one log. Each entry is plain English text with no level, tag or
// timestamp of the agent's own; it may hold line feeds.
#pragma once

#include <string_view>

namespace System {

// Writes one entry to the platform's log (platform::CurrentLogSink). Never throws.
void DebugLog(std::string_view text);

}  // namespace System
