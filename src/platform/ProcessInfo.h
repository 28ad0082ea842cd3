// The running process's own facts.
#pragma once

#include <string>
#include <vector>

namespace platform {

// The arguments the process was started with, the program's path first.
std::vector<std::string> ProcessArguments();

}  // namespace platform
