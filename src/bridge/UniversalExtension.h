// Array helpers: taking any array held in a Variant apart into one uniform
// array of Variant, copying string arrays, and reading dotted integer text.
#pragma once

#include <cstdint>
#include <string>

#include "runtime/Variant.h"

namespace UniversalExtension {

// The elements of the array held in value, each as a Variant, in order; empty
// for nil, a scalar, or an array of unknown element type. Arrays of objects that
// are neither Dictionaries nor Variants end in the TypeMismatchException of
// their last typed view; a typed view that does not fit its element type raises
// TypeMismatchException too.
ArrayRef<Variant> ArrayValueZRV(const Variant& value);

// A new array with the same strings; NilObjectException for a nil array.
ArrayRef<std::string> CloneArrayStringZRV(const ArrayRef<std::string>& values);

// The fields of text between separators, each read with Val and cut toward zero;
// empty for the empty text.
ArrayRef<int64_t> SplitIntegerArrayZRV(const std::string& text, const std::string& separator);

}  // namespace UniversalExtension
