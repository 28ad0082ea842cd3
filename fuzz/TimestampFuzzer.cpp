// Any stored text must read as a date or as nil; only the exceptions the reader
// documents may leave it, and a date it gives must write and read back.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "datetime/ExtensionDate.h"
#include "runtime/RuntimeException.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::shared_ptr<DateTime> date;
    try {
        date = ExtensionDate::ParseTimeStampZRV(text);
    } catch (const RuntimeException&) {
        return 0;  // the calendar's own refusals pass up by design
    }
    if (date == nullptr || date->Year() < 1 || date->Year() > 9999)
        return 0;
    const std::string written = ExtensionDate::ISO8601TimeStampZRV(date);
    const auto back = ExtensionDate::ParseTimeStampZRV(written);
    // The text keeps whole seconds. The date's own whole second is taken from its
    // fraction, not by flooring the double: 05.999999999 is 6.0 as a double.
    const auto whole = std::llround(date->SecondsFrom1970() - 1e-9 * date->Nanosecond());
    if (back == nullptr || std::llround(back->SecondsFrom1970()) != whole) {
        // A date whose zone offset has seconds loses them; anything else is a fault.
        if (date->Timezone()->SecondsFromGMT() % 60 == 0)
            __builtin_trap();
    }
    return 0;
}
