// Property-list files (XML or binary) as the store and the bundle helpers read
// them, and the XML the store writes. Input is checked before it reaches the
// parser: more than 16 MiB, nesting deeper than 512 levels, or a binary list
// whose objects refer to themselves is refused as corrupt.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/PropertyListValue.h"

namespace platform {

inline constexpr size_t kMaxPropertyListBytes = size_t{16} * 1024 * 1024;
inline constexpr int kMaxPropertyListDepth = 512;

// The value in the bytes of a property list, or nullopt when they are no
// property list this reads (refused by the checks above included).
std::optional<PropertyListValue> ParsePropertyList(std::string_view bytes);

// The file at path: missing, unreadable (with the errno), corrupt, or its value.
struct PropertyListRead {
    enum class Status { kRead, kMissing, kUnreadable, kCorrupt };
    Status status = Status::kMissing;
    int error = 0;
    std::optional<PropertyListValue> value;
};
PropertyListRead ReadPropertyList(const std::string& path);

// The value of the file at path, or nullopt when there is none to read.
std::optional<PropertyListValue> ReadPropertyListFile(const std::string& path);

// The value as an XML property list.
std::string PropertyListToXml(const PropertyListValue& value);

}  // namespace platform
