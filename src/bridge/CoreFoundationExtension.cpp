#include "bridge/CoreFoundationExtension.h"

#include <cmath>

#include "bridge/UniversalExtension.h"
#include "runtime/DebugLog.h"
#include "runtime/Dictionary.h"
#include "runtime/FolderItem.h"
#include "runtime/MemoryBlock.h"
#include "runtime/RuntimeException.h"

namespace CoreFoundationExtension {

namespace {

using platform::PropertyListValue;
using Kind = PropertyListValue::Kind;

constexpr const char* kUnhandledType = "Unhandled RBDictFromCFDict() of type: ";
constexpr const char* kNilDate = "The date is Nil.";
// Seconds from 1970-01-01 to 2001-01-01, both GMT: the native reference date.
constexpr double kReferenceDate = 978307200.0;

Variant DictionaryOf(const PropertyListValue& value) {
    auto dictionary = std::make_shared<Dictionary>(std::vector<std::pair<Variant, Variant>>{});
    for (const auto& [key, item] : value.Entries()) {
        dictionary->SetValue(ValueAsRBZRV(PropertyListValue::String(key)), ValueAsRBZRV(item));
    }
    return Variant(dictionary);
}

Variant ArrayOf(const PropertyListValue& value) {
    auto array = CreateArray<Variant>();
    for (const auto& item : value.Items())
        array->items.push_back(ValueAsRBZRV(item));
    return Variant(array);
}

std::optional<PropertyListValue> NativeArray(const Variant& value) {
    PropertyListValue::ArrayItems items;
    const ArrayRef<Variant> elements = UniversalExtension::ArrayValueZRV(value);
    for (const Variant& element : elements->items) {
        if (IsNull(element))
            continue;
        // An element without a native form is left out too: the store holds no nil.
        if (auto native = ValueAsCFZRV(element))
            items.push_back(std::move(*native));
    }
    return PropertyListValue::Array(std::move(items));
}

std::optional<PropertyListValue> NativeDictionary(const Dictionary& dictionary) {
    PropertyListValue result = PropertyListValue::Dictionary();
    for (int64_t i = 0; i < dictionary.KeyCount(); ++i) {
        const Variant& key = dictionary.Key(i);
        const Variant& item = dictionary.Value(key);
        if (item.IsNil())
            continue;
        const auto native = ValueAsCFZRV(item);
        if (!native)
            continue;
        result.Set(VariantToString(key), &*native);
    }
    return result;
}

}  // namespace

Variant ValueAsRBZRV(const PropertyListValue& value) {
    switch (value.kind()) {
        case Kind::kString:
            return StringToVariant(value.Text());
        case Kind::kReal:
            return DoubleToVariant(value.RealValue());
        case Kind::kInteger:
            return Int64ToVariant(value.IntegerValue());
        case Kind::kBoolean:
            return BooleanToVariant(value.BooleanValue());
        case Kind::kDictionary:
            return DictionaryOf(value);
        case Kind::kArray:
            return ArrayOf(value);
        case Kind::kDate:
            return Variant(ToRBDateZRV(value));
        case Kind::kData:
            return Variant(std::make_shared<MemoryBlock>(value.Bytes()));
        case Kind::kURL:
            return Variant(std::make_shared<FolderItem>(value.Text()));
        case Kind::kUUID:
            return StringToVariant(value.Text());
    }
    System::DebugLog(kUnhandledType + value.TypeDescription());
    return Variant();
}

std::shared_ptr<DateTime> ToRBDateZRV(const std::optional<PropertyListValue>& date) {
    if (!date)
        return nullptr;
    const DateTime gmt(kReferenceDate + date->RealValue(), std::make_shared<TimeZone>(0));
    return std::make_shared<DateTime>(gmt.Year(), gmt.Month(), gmt.Day(), gmt.Hour(), gmt.Minute(),
                                      gmt.Second(), 0, nullptr);
}

std::optional<PropertyListValue> ValueAsCFZRV(const Variant& value) {
    if (const auto native = std::dynamic_pointer_cast<NativeValue>(value.ObjectValue())) {
        return native->Value();
    }
    switch (VarType(value)) {
        case kTypeBoolean:
            return PropertyListValue::Boolean(VariantToBoolean(value));
        case kTypeDouble:
            return PropertyListValue::Real(VariantToDouble(value));
        case kTypeInt32:
        case kTypeInt64:
            return PropertyListValue::Integer(VariantToInt64(value));
        case kTypeSingle:
            return PropertyListValue::Real(VariantToSingle(value));
        case kTypeString:
            return PropertyListValue::String(VariantToString(value));
        case kTypeDateTime:
            return ValueAsCFDateZRV(VariantToDateTime(value));
        default:
            break;
    }
    if (VariantIsArray(value))
        return NativeArray(value);
    if (const auto block = std::dynamic_pointer_cast<MemoryBlock>(value.ObjectValue())) {
        return PropertyListValue::Data(block->Bytes());
    }
    if (const auto dictionary = std::dynamic_pointer_cast<Dictionary>(value.ObjectValue())) {
        return NativeDictionary(*dictionary);
    }
    return std::nullopt;
}

PropertyListValue ValueAsCFDateZRV(const std::shared_ptr<DateTime>& date) {
    if (date == nullptr)
        throw NilObjectException(kNilDate);
    // The reference date's GMT fields read on the local clock, against 1970.
    const DateTime epoch(0.0, nullptr);
    const DateTime reference(2001, 1, 1, 0, 0, 0, 0, nullptr);
    const double offset = reference.SecondsFrom1970() - epoch.SecondsFrom1970();
    return PropertyListValue::Date(date->SecondsFrom1970() - offset);
}

}  // namespace CoreFoundationExtension
