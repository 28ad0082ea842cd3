#include "runtime/Variant.h"

#include <cmath>

#include "runtime/DateTime.h"
#include "runtime/Text.h"

namespace {

constexpr const char* kNotANumber = "Type mismatch: an object has no numeric value.";
constexpr const char* kNotADateTime = "Type mismatch: the value is not a DateTime.";

// The numeric value of a boxed scalar or string; objects have none.
double NumberOf(const Variant& value) {
    if (value.IsNil())
        return 0.0;
    if (const auto* n = value.Scalar<int32_t>())
        return *n;
    if (const auto* n = value.Scalar<int64_t>())
        return static_cast<double>(*n);
    if (const auto* n = value.Scalar<float>())
        return *n;
    if (const auto* n = value.Scalar<double>())
        return *n;
    if (const auto* flag = value.Scalar<bool>())
        return *flag ? 1.0 : 0.0;
    if (const auto* color = value.Scalar<Color>())
        return color->rgba;
    if (const auto* text = value.Scalar<std::string>())
        return Val(*text);
    throw TypeMismatchException(kNotANumber);
}

}  // namespace

std::shared_ptr<Object> Variant::ObjectValue() const {
    const auto* object = std::get_if<std::shared_ptr<Object>>(&value_);
    return object != nullptr ? *object : nullptr;
}

int VarType(const Variant& value) {
    switch (value.value_.index()) {
        case 0:
            return kTypeNil;
        case 1:
            return kTypeInt32;
        case 2:
            return kTypeInt64;
        case 3:
            return kTypeSingle;
        case 4:
            return kTypeDouble;
        case 5:
            return kTypeString;
        case 6:
            return kTypeBoolean;
        case 7:
            return kTypeColor;
        default:
            break;
    }
    const auto object = value.ObjectValue();
    if (const auto array = std::dynamic_pointer_cast<ArrayBase>(object)) {
        return kTypeArray + array->ElementType();
    }
    return RuntimeObjectIsa<DateTime>(object) ? kTypeDateTime : kTypeObject;
}

bool VariantToBoolean(const Variant& value) {
    if (const auto* flag = value.Scalar<bool>())
        return *flag;
    if (const auto* text = value.Scalar<std::string>()) {
        return TextEquals(*text, "True") || Val(*text) != 0.0;
    }
    if (value.IsNil() || value.ObjectValue() != nullptr)
        return false;
    return NumberOf(value) != 0.0;
}

int64_t VariantToInt64(const Variant& value) {
    if (const auto* n = value.Scalar<int64_t>())
        return *n;
    const double number = NumberOf(value);
    if (std::isnan(number))
        return 0;
    // Out-of-range values saturate rather than invoke undefined behaviour.
    if (number >= 9223372036854775807.0)
        return INT64_MAX;
    if (number <= -9223372036854775808.0)
        return INT64_MIN;
    return static_cast<int64_t>(number);
}

float VariantToSingle(const Variant& value) {
    return static_cast<float>(NumberOf(value));
}

double VariantToDouble(const Variant& value) {
    return NumberOf(value);
}

std::string VariantToString(const Variant& value) {
    if (value.IsNil())
        return {};
    if (const auto* text = value.Scalar<std::string>())
        return *text;
    if (const auto* n = value.Scalar<int32_t>())
        return Str(static_cast<int64_t>(*n));
    if (const auto* n = value.Scalar<int64_t>())
        return Str(*n);
    if (const auto* n = value.Scalar<float>())
        return Str(static_cast<double>(*n));
    if (const auto* n = value.Scalar<double>())
        return Str(*n);
    if (const auto* flag = value.Scalar<bool>())
        return *flag ? "True" : "False";
    if (const auto* color = value.Scalar<Color>())
        return Str(static_cast<int64_t>(color->rgba));
    if (const auto date = std::dynamic_pointer_cast<DateTime>(value.ObjectValue())) {
        return date->SQLDateTime();
    }
    return {};
}

std::shared_ptr<DateTime> VariantToDateTime(const Variant& value) {
    if (value.IsNil())
        return nullptr;
    auto date = std::dynamic_pointer_cast<DateTime>(value.ObjectValue());
    if (date == nullptr)
        throw TypeMismatchException(kNotADateTime);
    return date;
}

bool IsNull(const Variant& value) {
    return value.IsNil();
}

int VariantCompare(const Variant& a, const Variant& b) {
    if (a.IsNil() || b.IsNil())
        return (a.IsNil() ? 0 : 1) - (b.IsNil() ? 0 : 1);
    const auto* textA = a.Scalar<std::string>();
    const auto* textB = b.Scalar<std::string>();
    if (textA != nullptr && textB != nullptr)
        return RuntimeStringCompare(*textA, *textB);
    const auto objectA = a.ObjectValue();
    const auto objectB = b.ObjectValue();
    if (objectA != nullptr || objectB != nullptr) {
        return objectA == objectB ? 0 : (std::less<>()(objectA.get(), objectB.get()) ? -1 : 1);
    }
    const double numberA = NumberOf(a);
    const double numberB = NumberOf(b);
    return numberA < numberB ? -1 : (numberA > numberB ? 1 : 0);
}

bool VariantIsArray(const Variant& value) {
    return std::dynamic_pointer_cast<ArrayBase>(value.ObjectValue()) != nullptr;
}

int VariantGetArrayElementType(const Variant& value) {
    const auto array = std::dynamic_pointer_cast<ArrayBase>(value.ObjectValue());
    return array != nullptr ? array->ElementType() : kTypeNil;
}

Variant GetVariantArrayValueMBS(const Variant& value, int64_t index) {
    const auto array = std::dynamic_pointer_cast<ArrayBase>(value.ObjectValue());
    return array != nullptr ? array->VariantAt(index) : Variant();
}

bool RuntimeIsNumeric(const Variant& value) {
    switch (VarType(value)) {
        case kTypeInt32:
        case kTypeInt64:
        case kTypeSingle:
        case kTypeDouble:
            return true;
        case kTypeString:
            return IsNumeric(*value.Scalar<std::string>());
        default:
            return false;
    }
}
