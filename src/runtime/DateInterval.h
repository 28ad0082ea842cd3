// A span in calendar units, plain data.
#pragma once

#include <cstdint>

#include "runtime/Object.h"

class DateInterval final : public Object {
  public:
    DateInterval() = default;
    DateInterval(int64_t years, int64_t months, int64_t days, int64_t hours, int64_t minutes,
                 int64_t seconds, int64_t nanoseconds)
        : Years(years),
          Months(months),
          Days(days),
          Hours(hours),
          Minutes(minutes),
          Seconds(seconds),
          Nanoseconds(nanoseconds) {}

    int64_t Years = 0;
    int64_t Months = 0;
    int64_t Days = 0;
    int64_t Hours = 0;
    int64_t Minutes = 0;
    int64_t Seconds = 0;
    int64_t Nanoseconds = 0;
};
