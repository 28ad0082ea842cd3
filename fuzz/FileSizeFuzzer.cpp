// Size text and extensions of arbitrary input: never a crash, and the shapes
// the alert relies on.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "files/FileSizeFormat.h"
#include "files/FolderItemNames.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size >= sizeof(double) + 2) {
        double bytes = 0;
        std::memcpy(&bytes, data, sizeof bytes);
        const auto mode = static_cast<int64_t>(static_cast<int8_t>(data[sizeof bytes])) % 12;
        const bool keep = (data[sizeof bytes + 1] & 1) != 0;
        const std::string text = FolderItemExtension::FormatFileSize(bytes, mode, keep);
        const bool known = mode >= -1 && mode <= 9;
        if (bytes == -1.0 && text != "--")
            __builtin_trap();
        if (bytes != -1.0 && known && std::isfinite(bytes) && text.find(' ') == std::string::npos) {
            __builtin_trap();  // a known unit is always written behind a blank
        }
        if (!known && bytes != -1.0 && !text.empty())
            __builtin_trap();
    }
    const std::string name(reinterpret_cast<const char*>(data), size);
    const std::string extension = FolderItemExtension::FileExtension(name);
    if (!extension.empty() && (extension[0] != '.' || !name.ends_with(extension.substr(1)))) {
        __builtin_trap();
    }
    return 0;
}
