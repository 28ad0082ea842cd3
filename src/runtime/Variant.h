// Variant: a value of any of the runtime's types, or nil. Scalars are boxed in
// it; objects (DateTime, Dictionary, MemoryBlock, FolderItem, property-list
// values) and arrays stand for themselves, shared by reference.
//
// Type numbers (VarType) and array element types:
//   0 nil, 2 Int32, 3 Int64, 4 Single, 5 Double, 8 String, 9 Object,
//   11 Boolean, 16 Color, 38 DateTime; an array answers kTypeArray + element type.
//
// Arrays are Array<T>; the element codes of the typed views map to T as
//   1 float, 2 double, 3 std::string, 4 Variant, 11 int64_t, 14 Color, 16 bool,
// and a class C to std::shared_ptr<C>.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "runtime/Object.h"
#include "runtime/RuntimeException.h"

class DateTime;
class Variant;

enum VarTypes : int {
    kTypeNil = 0,
    kTypeInt32 = 2,
    kTypeInt64 = 3,
    kTypeSingle = 4,
    kTypeDouble = 5,
    kTypeString = 8,
    kTypeObject = 9,
    kTypeBoolean = 11,
    kTypeColor = 16,
    kTypeDateTime = 38,
    kTypeArray = 4096,
};

class ArrayBase : public Object {
  public:
    // The type number of the elements (see VarTypes).
    virtual int ElementType() const = 0;
    // The index of the last element; -1 when empty.
    virtual int64_t LastIndex() const = 0;
    // The element at index as a Variant (scalars boxed); nil outside the array.
    virtual Variant VariantAt(int64_t index) const = 0;
};

template <class T>
constexpr int ElementTypeOf() {
    if constexpr (std::is_same_v<T, int32_t>)
        return kTypeInt32;
    else if constexpr (std::is_same_v<T, int64_t>)
        return kTypeInt64;
    else if constexpr (std::is_same_v<T, float>)
        return kTypeSingle;
    else if constexpr (std::is_same_v<T, double>)
        return kTypeDouble;
    else if constexpr (std::is_same_v<T, std::string>)
        return kTypeString;
    else if constexpr (std::is_same_v<T, bool>)
        return kTypeBoolean;
    else if constexpr (std::is_same_v<T, Color>)
        return kTypeColor;
    else if constexpr (std::is_same_v<T, std::shared_ptr<DateTime>>)
        return kTypeDateTime;
    else
        return kTypeObject;  // Variant, or a shared_ptr to any other object class
}

// A growable array indexed from 0, of one element type, shared by reference.
template <class T>
class Array final : public ArrayBase {
  public:
    Array() = default;
    explicit Array(std::vector<T> elements) : items(std::move(elements)) {}

    int ElementType() const override { return ElementTypeOf<T>(); }
    int64_t LastIndex() const override { return static_cast<int64_t>(items.size()) - 1; }
    Variant VariantAt(int64_t index) const override;

    std::vector<T> items;
};

template <class T>
using ArrayRef = std::shared_ptr<Array<T>>;

// A new empty array (upper bound -1).
template <class T>
ArrayRef<T> CreateArray() {
    return std::make_shared<Array<T>>();
}

class Variant {
  public:
    Variant() = default;
    Variant(std::nullptr_t) {}  // NOLINT(google-explicit-constructor): nil converts implicitly
    template <class T>
    requires std::is_base_of_v<Object, T> Variant(
        std::shared_ptr<T> object)  // NOLINT(google-explicit-constructor): objects are Variants
        : value_(std::shared_ptr<Object>(std::move(object))) {
        if (std::get<std::shared_ptr<Object>>(value_) == nullptr)
            value_ = std::monostate{};
    }

    static Variant Box(bool value) { return Variant(Storage(value)); }
    static Variant Box(int32_t value) { return Variant(Storage(value)); }
    static Variant Box(int64_t value) { return Variant(Storage(value)); }
    static Variant Box(float value) { return Variant(Storage(value)); }
    static Variant Box(double value) { return Variant(Storage(value)); }
    static Variant Box(std::string value) { return Variant(Storage(std::move(value))); }
    static Variant Box(Color value) { return Variant(Storage(value)); }

    bool IsNil() const { return std::holds_alternative<std::monostate>(value_); }
    // The object or array held, or nullptr for nil and for a boxed scalar.
    std::shared_ptr<Object> ObjectValue() const;

    // The boxed scalar of type T, or nullptr when the Variant holds anything else.
    template <class T>
    const T* Scalar() const {
        return std::get_if<T>(&value_);
    }

    friend int VarType(const Variant& value);

  private:
    using Storage = std::variant<std::monostate, int32_t, int64_t, float, double, std::string, bool,
                                 Color, std::shared_ptr<Object>>;
    explicit Variant(Storage value) : value_(std::move(value)) {}

    Storage value_;
};

template <class T>
Variant Array<T>::VariantAt(int64_t index) const {
    if (index < 0 || index > LastIndex())
        return Variant();
    const T& element = items[static_cast<size_t>(index)];
    if constexpr (std::is_same_v<T, Variant>) {
        return element;
    } else if constexpr (requires { Variant::Box(element); }) {
        return Variant::Box(element);
    } else {
        return Variant(element);
    }
}

// The element at index of the array held in value; nil when there is none.
Variant GetVariantArrayValueMBS(const Variant& value, int64_t index);

// Boxing.
inline Variant BooleanToVariant(bool value) {
    return Variant::Box(value);
}
inline Variant Int32ToVariant(int32_t value) {
    return Variant::Box(value);
}
inline Variant Int64ToVariant(int64_t value) {
    return Variant::Box(value);
}
inline Variant SingleToVariant(float value) {
    return Variant::Box(value);
}
inline Variant DoubleToVariant(double value) {
    return Variant::Box(value);
}
inline Variant StringToVariant(std::string value) {
    return Variant::Box(std::move(value));
}
inline Variant ColorToVariant(Color value) {
    return Variant::Box(value);
}

// Unboxing, from a Variant of any type. Nil gives false, 0, 0.0 or the empty text.
// A string reads as a number through Val and as a boolean when it is "True" (any
// case) or a non-zero number; a number reads as a boolean when it is not 0; an
// object reads as false and as the empty text, except a DateTime, whose text is
// "YYYY-MM-DD HH:MM:SS" in its own zone. The numeric conversions of an object
// raise TypeMismatchException.
bool VariantToBoolean(const Variant& value);
int64_t VariantToInt64(const Variant& value);
float VariantToSingle(const Variant& value);
double VariantToDouble(const Variant& value);
std::string VariantToString(const Variant& value);
// The DateTime held, nil for nil; TypeMismatchException for anything else.
std::shared_ptr<DateTime> VariantToDateTime(const Variant& value);

// The type number; an array answers kTypeArray + its element type.
int VarType(const Variant& value);
// True for a nil Variant.
bool IsNull(const Variant& value);
// Order of two Variants: 0 when equal, negative or positive otherwise. Against
// nil: 0 for nil, non-zero for any value that is there.
int VariantCompare(const Variant& a, const Variant& b);
bool VariantIsArray(const Variant& value);
// The element type number of the array held; 0 when the Variant holds no array.
int VariantGetArrayElementType(const Variant& value);
// True for a boxed number, and for a string that reads as a number as a whole.
bool RuntimeIsNumeric(const Variant& value);

// The array in the Variant as an array of T; TypeMismatchException when the
// Variant holds no array or one of other elements.
template <class T>
ArrayRef<T> VariantArrayAssignmentWithTypeCheck(const Variant& value) {
    auto typed = std::dynamic_pointer_cast<Array<T>>(value.ObjectValue());
    if (typed == nullptr) {
        throw TypeMismatchException("Type mismatch: the array's elements are of another type.");
    }
    return typed;
}

// Whether the object is of class T; false for nil.
template <class T>
bool RuntimeObjectIsa(const std::shared_ptr<Object>& object) {
    return std::dynamic_pointer_cast<T>(object) != nullptr;
}
template <class T>
bool RuntimeObjectIsa(const Variant& value) {
    return RuntimeObjectIsa<T>(value.ObjectValue());
}

// The object as T; nil passes as nil, an object of another class raises
// TypeMismatchException.
template <class T>
std::shared_ptr<T> RuntimeCheckCast(const std::shared_ptr<Object>& object) {
    if (object == nullptr)
        return nullptr;
    auto cast = std::dynamic_pointer_cast<T>(object);
    if (cast == nullptr)
        throw TypeMismatchException("Illegal cast: the object is of another class.");
    return cast;
}
// As above; a boxed scalar is no object of class T and raises too.
template <class T>
std::shared_ptr<T> RuntimeCheckCast(const Variant& value) {
    if (!value.IsNil() && value.ObjectValue() == nullptr) {
        throw TypeMismatchException("Illegal cast: the value is not an object.");
    }
    return RuntimeCheckCast<T>(value.ObjectValue());
}
