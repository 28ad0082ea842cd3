#include "runtime/Dictionary.h"

#include <functional>
#include <string>

#include "runtime/RuntimeException.h"

namespace {

constexpr const char* kKeyNotFound = "The key was not found in the Dictionary.";

}  // namespace

Dictionary::Dictionary(const std::vector<std::pair<Variant, Variant>>& pairs) {
    for (const auto& [key, value] : pairs)
        SetValue(key, value);
}

size_t Dictionary::KeyHash::operator()(const Variant& key) const {
    if (const auto* text = key.Scalar<std::string>())
        return std::hash<std::string>()(*text);
    if (const auto* number = key.Scalar<int64_t>())
        return std::hash<int64_t>()(*number);
    if (const auto* number = key.Scalar<int32_t>())
        return std::hash<int64_t>()(*number);
    if (const auto* number = key.Scalar<double>())
        return std::hash<double>()(*number);
    if (const auto* number = key.Scalar<float>())
        return std::hash<double>()(*number);
    if (const auto* flag = key.Scalar<bool>())
        return std::hash<bool>()(*flag);
    if (const auto* color = key.Scalar<Color>())
        return std::hash<uint32_t>()(color->rgba);
    return std::hash<Object*>()(key.ObjectValue().get());
}

bool Dictionary::KeyEqual::operator()(const Variant& a, const Variant& b) const {
    const int typeA = VarType(a);
    const int typeB = VarType(b);
    const auto integral = [](int type) { return type == kTypeInt32 || type == kTypeInt64; };
    const auto floating = [](int type) { return type == kTypeSingle || type == kTypeDouble; };
    if (integral(typeA) && integral(typeB))
        return VariantToInt64(a) == VariantToInt64(b);
    if (floating(typeA) && floating(typeB))
        return VariantToDouble(a) == VariantToDouble(b);
    if (typeA != typeB)
        return false;
    if (const auto* text = a.Scalar<std::string>())
        return *text == *b.Scalar<std::string>();
    if (const auto* flag = a.Scalar<bool>())
        return *flag == *b.Scalar<bool>();
    if (const auto* color = a.Scalar<Color>())
        return *color == *b.Scalar<Color>();
    return a.ObjectValue() == b.ObjectValue();
}

bool Dictionary::HasKey(const Variant& key) const {
    return index_.contains(key);
}

const Variant& Dictionary::Value(const Variant& key) const {
    const auto found = index_.find(key);
    if (found == index_.end())
        throw KeyNotFoundException(kKeyNotFound);
    return entries_[found->second].second;
}

void Dictionary::SetValue(const Variant& key, Variant value) {
    const auto [found, inserted] = index_.emplace(key, entries_.size());
    if (inserted) {
        entries_.emplace_back(key, std::move(value));
    } else {
        entries_[found->second].second = std::move(value);
    }
}

Variant Dictionary::Lookup(const Variant& key, const Variant& fallback) const {
    const auto found = index_.find(key);
    return found == index_.end() ? fallback : entries_[found->second].second;
}

const Variant& Dictionary::Key(int64_t index) const {
    if (index < 0 || index >= KeyCount())
        throw KeyNotFoundException(kKeyNotFound);
    return entries_[static_cast<size_t>(index)].first;
}

void Dictionary::Remove(const Variant& key) {
    const auto found = index_.find(key);
    if (found == index_.end())
        throw KeyNotFoundException(kKeyNotFound);
    const size_t position = found->second;
    index_.erase(found);
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position));
    for (auto& [entryKey, entryPosition] : index_) {
        if (entryPosition > position)
            --entryPosition;
    }
}

void Dictionary::RemoveAll() {
    entries_.clear();
    index_.clear();
}

std::vector<Variant> Dictionary::Keys() const {
    std::vector<Variant> keys;
    keys.reserve(entries_.size());
    for (const auto& entry : entries_)
        keys.push_back(entry.first);
    return keys;
}

std::vector<Variant> Dictionary::Values() const {
    std::vector<Variant> values;
    values.reserve(entries_.size());
    for (const auto& entry : entries_)
        values.push_back(entry.second);
    return values;
}

std::shared_ptr<Dictionary> Dictionary::Clone() const {
    return std::make_shared<Dictionary>(entries_);
}
