#include "bridge/UniversalExtension.h"

#include <cmath>

#include "runtime/DateTime.h"
#include "runtime/DebugLog.h"
#include "runtime/Dictionary.h"
#include "runtime/Text.h"

namespace UniversalExtension {

namespace {

constexpr const char* kConvertFailed = "Failed to convert variant to correct type.";
constexpr const char* kNilArray = "The array is Nil.";

// Appends every element of the typed view of value, boxed as a Variant.
template <class T>
ArrayRef<Variant> BoxAll(const Variant& value, ArrayRef<Variant> result) {
    const ArrayRef<T> typed = VariantArrayAssignmentWithTypeCheck<T>(value);
    for (const auto& element : typed->items) {
        if constexpr (std::is_same_v<T, std::shared_ptr<DateTime>>) {
            result->items.emplace_back(element);
        } else if constexpr (std::is_same_v<T, int32_t>) {
            result->items.push_back(Int64ToVariant(element));  // both widths read as Int64
        } else {
            result->items.push_back(Variant::Box(element));
        }
    }
    return result;
}

// Arrays of objects do not say their element class, so the views are tried in turn.
ArrayRef<Variant> ObjectElements(const Variant& value, ArrayRef<Variant> result) {
    try {
        const auto dictionaries =
            VariantArrayAssignmentWithTypeCheck<std::shared_ptr<Dictionary>>(value);
        for (const auto& dictionary : dictionaries->items) {
            result->items.emplace_back(dictionary);
        }
        return result;
    } catch (const TypeMismatchException&) {
    }
    try {
        const ArrayRef<Variant> elements = VariantArrayAssignmentWithTypeCheck<Variant>(value);
        for (const Variant& element : elements->items) {
            result->items.push_back(VariantIsArray(element) ? Variant(ArrayValueZRV(element))
                                                            : element);
        }
        return result;
    } catch (const TypeMismatchException&) {
    }
    System::DebugLog(kConvertFailed);
    // Last resort: an array of arrays whose first element is an array of objects.
    return VariantArrayAssignmentWithTypeCheck<Variant>(GetVariantArrayValueMBS(value, 0));
}

}  // namespace

ArrayRef<Variant> ArrayValueZRV(const Variant& value) {
    auto result = CreateArray<Variant>();
    if (IsNull(value) || !VariantIsArray(value))
        return result;
    switch (VariantGetArrayElementType(value)) {
        case kTypeBoolean:
            return BoxAll<bool>(value, result);
        case kTypeColor:
            return BoxAll<Color>(value, result);
        case kTypeDateTime:
            return BoxAll<std::shared_ptr<DateTime>>(value, result);
        case kTypeDouble:
            return BoxAll<double>(value, result);
        case kTypeInt32:
            return BoxAll<int32_t>(value, result);
        case kTypeInt64:
            return BoxAll<int64_t>(value, result);
        case kTypeSingle:
            return BoxAll<float>(value, result);
        case kTypeString:
            return BoxAll<std::string>(value, result);
        case kTypeObject:
            return ObjectElements(value, result);
        default:
            return result;
    }
}

ArrayRef<std::string> CloneArrayStringZRV(const ArrayRef<std::string>& values) {
    if (values == nullptr)
        throw NilObjectException(kNilArray);
    return std::make_shared<Array<std::string>>(values->items);
}

ArrayRef<int64_t> SplitIntegerArrayZRV(const std::string& text, const std::string& separator) {
    auto result = CreateArray<int64_t>();
    if (text.empty())
        return result;
    for (const std::string& field : Split(text, separator)) {
        const double number = std::trunc(Val(field));
        result->items.push_back(
            std::isfinite(number) && std::fabs(number) < 9.2e18 ? static_cast<int64_t>(number) : 0);
    }
    return result;
}

}  // namespace UniversalExtension
