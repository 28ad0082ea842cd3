// The native value of the preference store and of property-list files: a closed
// sum of string, integer, real, boolean, date, data, array and dictionary, with
// URL and UUID on the reading side only. Plain data, copied by value.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace platform {

class PropertyListValue {
  public:
    enum class Kind {
        kString,
        kInteger,
        kReal,
        kBoolean,
        kDate,
        kData,
        kArray,
        kDictionary,
        kURL,
        kUUID
    };
    using ArrayItems = std::vector<PropertyListValue>;
    // Pairs in the order they were read or entered; keys are unique.
    using DictionaryItems = std::vector<std::pair<std::string, PropertyListValue>>;

    static PropertyListValue String(std::string text) { return {Kind::kString, std::move(text)}; }
    static PropertyListValue Integer(int64_t number) { return {Kind::kInteger, number}; }
    static PropertyListValue Real(double number) { return {Kind::kReal, number}; }
    static PropertyListValue Boolean(bool flag) { return {Kind::kBoolean, flag}; }
    // Seconds from 2001-01-01 00:00:00 GMT.
    static PropertyListValue Date(double secondsFrom2001) { return {Kind::kDate, secondsFrom2001}; }
    static PropertyListValue Data(std::vector<uint8_t> bytes) {
        return {Kind::kData, std::move(bytes)};
    }
    static PropertyListValue Array(ArrayItems items = {}) {
        return {Kind::kArray, std::move(items)};
    }
    static PropertyListValue Dictionary(DictionaryItems items = {}) {
        return {Kind::kDictionary, std::move(items)};
    }
    static PropertyListValue URL(std::string path) { return {Kind::kURL, std::move(path)}; }
    static PropertyListValue UUID(std::string text) { return {Kind::kUUID, std::move(text)}; }

    Kind kind() const { return kind_; }
    // Each accessor answers for its own kinds (Text: string, URL, UUID; Number:
    // real or date); asked of another kind it gives the empty value.
    const std::string& Text() const;
    int64_t IntegerValue() const;
    double RealValue() const;
    bool BooleanValue() const;
    const std::vector<uint8_t>& Bytes() const;
    const ArrayItems& Items() const;
    const DictionaryItems& Entries() const;
    // The entry of a dictionary, or nullptr.
    const PropertyListValue* Find(const std::string& key) const;
    // Enters or replaces an entry of a dictionary; removes it for nullptr.
    void Set(const std::string& key, const PropertyListValue* value);
    // The name of the native type, as the logs show it.
    std::string TypeDescription() const;

    friend bool operator==(const PropertyListValue&, const PropertyListValue&) = default;

  private:
    using Storage = std::variant<std::string, int64_t, double, bool, std::vector<uint8_t>,
                                 ArrayItems, DictionaryItems>;
    PropertyListValue(Kind kind, Storage value) : kind_(kind), value_(std::move(value)) {}

    Kind kind_;
    Storage value_;
};

}  // namespace platform
