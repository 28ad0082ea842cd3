// Conversion between the store's native values and the runtime's: a native
// dictionary becomes a Dictionary, an array an array of Variant, a date a
// DateTime on the local clock, and back. A value with no native form has none.
#pragma once

#include <memory>
#include <optional>

#include "platform/PropertyListValue.h"
#include "runtime/DateTime.h"
#include "runtime/Object.h"
#include "runtime/Variant.h"

namespace CoreFoundationExtension {

// A native value held by a Variant as it is; it crosses back unchanged.
class NativeValue final : public Object {
  public:
    explicit NativeValue(platform::PropertyListValue value) : value_(std::move(value)) {}
    const platform::PropertyListValue& Value() const { return value_; }

  private:
    platform::PropertyListValue value_;
};

// The runtime value of a native one: strings, numbers (integer or real by the
// number's own kind) and booleans boxed; dictionaries and arrays (of Variant)
// built anew at any depth; dates through ToRBDateZRV; data as a MemoryBlock; a
// URL as a FolderItem; a UUID as its text. Raises what the calendar raises for a
// date it cannot hold.
Variant ValueAsRBZRV(const platform::PropertyListValue& value);

// The date's calendar fields in GMT as the same fields on the local clock, to the
// whole second. Nil for nil.
std::shared_ptr<DateTime> ToRBDateZRV(const std::optional<platform::PropertyListValue>& date);

// The native value of a runtime one, or nullopt when it has none (nil, objects
// other than dates, dictionaries, data and native values). Array elements that
// are nil or have no native form are left out, as are such dictionary entries;
// dictionary keys become their text. Raises what ArrayValueZRV raises.
std::optional<platform::PropertyListValue> ValueAsCFZRV(const Variant& value);

// The native date that carries the date's local clock reading through the store
// (the inverse shift of ToRBDateZRV). NilObjectException for nil.
platform::PropertyListValue ValueAsCFDateZRV(const std::shared_ptr<DateTime>& date);

}  // namespace CoreFoundationExtension
