#include "platform/PropertyListValue.h"

#include <algorithm>

namespace platform {

namespace {

template <class T>
const T& Empty() {
    static const T empty{};
    return empty;
}

}  // namespace

const std::string& PropertyListValue::Text() const {
    const auto* text = std::get_if<std::string>(&value_);
    return text != nullptr ? *text : Empty<std::string>();
}

int64_t PropertyListValue::IntegerValue() const {
    const auto* number = std::get_if<int64_t>(&value_);
    return number != nullptr ? *number : 0;
}

double PropertyListValue::RealValue() const {
    const auto* number = std::get_if<double>(&value_);
    return number != nullptr ? *number : 0.0;
}

bool PropertyListValue::BooleanValue() const {
    const auto* flag = std::get_if<bool>(&value_);
    return flag != nullptr && *flag;
}

const std::vector<uint8_t>& PropertyListValue::Bytes() const {
    const auto* bytes = std::get_if<std::vector<uint8_t>>(&value_);
    return bytes != nullptr ? *bytes : Empty<std::vector<uint8_t>>();
}

const PropertyListValue::ArrayItems& PropertyListValue::Items() const {
    const auto* items = std::get_if<ArrayItems>(&value_);
    return items != nullptr ? *items : Empty<ArrayItems>();
}

const PropertyListValue::DictionaryItems& PropertyListValue::Entries() const {
    const auto* entries = std::get_if<DictionaryItems>(&value_);
    return entries != nullptr ? *entries : Empty<DictionaryItems>();
}

const PropertyListValue* PropertyListValue::Find(const std::string& key) const {
    for (const auto& [entryKey, value] : Entries()) {
        if (entryKey == key)
            return &value;
    }
    return nullptr;
}

void PropertyListValue::Set(const std::string& key, const PropertyListValue* value) {
    auto* entries = std::get_if<DictionaryItems>(&value_);
    if (entries == nullptr)
        return;
    const auto found = std::find_if(entries->begin(), entries->end(),
                                    [&](const auto& entry) { return entry.first == key; });
    if (value == nullptr) {
        if (found != entries->end())
            entries->erase(found);
    } else if (found != entries->end()) {
        found->second = *value;
    } else {
        entries->emplace_back(key, *value);
    }
}

std::string PropertyListValue::TypeDescription() const {
    switch (kind_) {
        case Kind::kString:
            return "CFString";
        case Kind::kInteger:
        case Kind::kReal:
            return "CFNumber";
        case Kind::kBoolean:
            return "CFBoolean";
        case Kind::kDate:
            return "CFDate";
        case Kind::kData:
            return "CFData";
        case Kind::kArray:
            return "CFArray";
        case Kind::kDictionary:
            return "CFDictionary";
        case Kind::kURL:
            return "CFURL";
        case Kind::kUUID:
            return "CFUUID";
    }
    return "CFType";
}

}  // namespace platform
