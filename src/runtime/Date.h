// The legacy calendar object: settable fields in a zone given as hours from GMT.
// Fields may be set out of their ranges (minute -1, say); the conversion to a
// DateTime carries the excess into the larger fields.
#pragma once

#include <cstdint>

#include "runtime/Object.h"

class Date final : public Object {
  public:
    // The present moment, to the second, in the current zone.
    Date();

    int64_t Year = 1;
    int64_t Month = 1;
    int64_t Day = 1;
    int64_t Hour = 0;
    int64_t Minute = 0;
    int64_t Second = 0;
    double GMTOffset = 0.0;  // hours east of Greenwich
};
