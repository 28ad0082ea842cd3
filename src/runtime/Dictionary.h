// Dictionary: a map from Variant to Variant, shared by reference. Keys compare
// by type and value (strings with regard to case, so that no two keys of a
// property list collapse into one); Key(index) walks the keys in the order they
// were first entered.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "runtime/Object.h"
#include "runtime/Variant.h"

class Dictionary final : public Object {
  public:
    Dictionary() = default;
    // Enters each pair in list order, as repeated Value assignments would.
    explicit Dictionary(const std::vector<std::pair<Variant, Variant>>& pairs);

    bool HasKey(const Variant& key) const;
    // The value of the key; KeyNotFoundException when the key is absent.
    const Variant& Value(const Variant& key) const;
    // Enters or replaces an entry; nil is a valid value.
    void SetValue(const Variant& key, Variant value);
    // The value of the key, or the fallback when it is absent; never raises.
    Variant Lookup(const Variant& key, const Variant& fallback) const;
    // The key at 0-based index; KeyNotFoundException outside 0 .. KeyCount - 1.
    const Variant& Key(int64_t index) const;
    int64_t KeyCount() const { return static_cast<int64_t>(entries_.size()); }
    int64_t Count() const { return KeyCount(); }
    // Removes the key; KeyNotFoundException when it is absent.
    void Remove(const Variant& key);
    void RemoveAll();
    std::vector<Variant> Keys() const;
    std::vector<Variant> Values() const;
    // A new dictionary with the same entries (the values are shared, not copied).
    std::shared_ptr<Dictionary> Clone() const;

  private:
    struct KeyHash {
        size_t operator()(const Variant& key) const;
    };
    struct KeyEqual {
        bool operator()(const Variant& a, const Variant& b) const;
    };

    std::vector<std::pair<Variant, Variant>> entries_;
    std::unordered_map<Variant, size_t, KeyHash, KeyEqual> index_;
};
