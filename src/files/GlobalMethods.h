// Versions of dotted text and of the running system, and the forced end of the
// process.
#pragma once

#include <cstdint>
#include <string>

namespace GlobalMethods {

// 1 when first is the newer version, -1 when it is the older, 0 when the two
// agree in their first three fields. Fields are integers ("1.10" is newer than
// "1.9"); a missing or unreadable field counts as 0. Never fails.
int64_t CompareVersions(const std::string& first, const std::string& second);

// The system's version as "major.minor.bugfix", behind its name and a blank
// unless numbersOnly. Never fails: a field the system does not report is 0, an
// unknown name is empty.
std::string GetSystemVersion(bool numbersOnly);

// Whether the running system is that version or newer. A text that is no
// version reads as 0, so the answer is then true.
bool IsAtLeastOSVersion(const std::string& version);

// Ends the process at once with status 0, after the log is flushed; no further
// events run. Does not return.
[[noreturn]] void ForceQuit();

}  // namespace GlobalMethods
