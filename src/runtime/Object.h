// The root of the runtime's reference types. A Variant holds any of them
// without boxing; nil is an empty reference.
#pragma once

#include <memory>

class Object {
  public:
    virtual ~Object() = default;
};

// The system's colour type, as a Variant can box it: bytes R, G, B, alpha.
struct Color {
    uint32_t rgba = 0;
    friend bool operator==(Color, Color) = default;
};
