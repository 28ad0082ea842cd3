// Reading the call stack of the running thread, for the crash report.
#pragma once

#include <string>
#include <vector>

namespace platform {

// Demangled names of the functions on the current call stack, innermost first,
// leaving out this function and the skipFrames frames above it. A frame whose
// name cannot be read is left out; never throws.
std::vector<std::string> CaptureStack(int skipFrames);

}  // namespace platform
