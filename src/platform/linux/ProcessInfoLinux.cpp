#include <fstream>
#include <iterator>

#include "platform/ProcessInfo.h"

namespace platform {

std::vector<std::string> ProcessArguments() {
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)),
                            std::istreambuf_iterator<char>());
    std::vector<std::string> arguments;
    for (size_t from = 0; from < bytes.size();) {
        const size_t end = bytes.find('\0', from);
        arguments.push_back(bytes.substr(from, end - from));
        from = end == std::string::npos ? bytes.size() : end + 1;
    }
    return arguments;
}

}  // namespace platform
