#include "platform/StackTrace.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>

#include <array>
#include <cstdlib>
#include <memory>

namespace platform {

namespace {

std::string Demangle(const char* symbol) {
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> demangled(
        abi::__cxa_demangle(symbol, nullptr, nullptr, &status), &std::free);
    return status == 0 && demangled ? std::string(demangled.get()) : std::string(symbol);
}

}  // namespace

std::vector<std::string> CaptureStack(int skipFrames) {
    constexpr int kMaxFrames = 64;
    std::array<void*, kMaxFrames> frames{};
    const int count = backtrace(frames.data(), kMaxFrames);
    std::vector<std::string> names;
    for (int i = 1 + skipFrames; i < count; ++i) {
        Dl_info info{};
        // The return address points behind the call; step back into it.
        void* address = static_cast<char*>(frames[static_cast<size_t>(i)]) - 1;
        if (dladdr(address, &info) != 0 && info.dli_sname != nullptr) {
            names.push_back(Demangle(info.dli_sname));
        }
    }
    return names;
}

}  // namespace platform
