// DateTime: an instant, kept to the nanosecond, with the zone whose calendar
// fields it shows. Immutable; every operation gives a new DateTime.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "runtime/Object.h"
#include "runtime/TimeZone.h"

class Date;

class DateTime final : public Object {
  public:
    // From calendar fields. InvalidArgumentException, in this order of checks:
    // "Month out of range" (1-12), "Year out of range" (below 1), "Day out of range",
    // "Hour out of range", "Minute out of range", "Second out of range" (negative
    // values fail the last three too). The nanosecond is not checked. A nil zone
    // is the current zone.
    DateTime(int64_t year, int64_t month, int64_t day, int64_t hour, int64_t minute, int64_t second,
             int64_t nanosecond, std::shared_ptr<TimeZone> zone);
    // That many seconds from 1970-01-01 00:00:00 GMT, fractions kept; a nil zone is
    // the current zone. InvalidArgumentException for a value that is no date.
    DateTime(double secondsFrom1970, std::shared_ptr<TimeZone> zone);
    // The same calendar fields as the legacy date, in its zone; no range checks.
    explicit DateTime(const Date& date);

    // The present moment, in the zone of the current zone's abbreviation, or in
    // zone when it is given.
    static std::shared_ptr<DateTime> Now(const std::shared_ptr<TimeZone>& zone);
    // Reads "YYYY-MM-DD" or "YYYY-MM-DD HH:MM[:SS]" in zone (nil: the current zone).
    // InvalidArgumentException "Date string cannot be empty" for the empty text, and
    // for any text it cannot read.
    static std::shared_ptr<DateTime> FromString(const std::string& text,
                                                const std::shared_ptr<TimeZone>& zone);
    // UnsupportedOperationException for a nil date.
    static std::shared_ptr<DateTime> Operator_Convert(const std::shared_ptr<Date>& date);

    // A new DateTime that far before (after) this one, years, months and days on
    // the calendar of this one's zone, the rest as elapsed time.
    std::shared_ptr<DateTime> SubtractInterval(int64_t years, int64_t months, int64_t days,
                                               int64_t hours, int64_t minutes, int64_t seconds,
                                               int64_t nanoseconds) const;
    std::shared_ptr<DateTime> AddInterval(int64_t years, int64_t months, int64_t days,
                                          int64_t hours, int64_t minutes, int64_t seconds,
                                          int64_t nanoseconds) const;
    // -1, 0 or 1 as this one is before, at or after other; any date is after nil.
    int Operator_Compare(const std::shared_ptr<DateTime>& other) const;

    int64_t Year() const;
    int64_t Month() const;
    int64_t Day() const;
    int64_t Hour() const;
    int64_t Minute() const;
    int64_t Second() const;
    int64_t Nanosecond() const { return nanosecond_; }
    double SecondsFrom1970() const;
    // The zone, answering its offset and abbreviation for this instant.
    std::shared_ptr<TimeZone> Timezone() const;
    // "YYYY-MM-DD HH:MM:SS" in this one's zone.
    std::string SQLDateTime() const;

  private:
    DateTime(std::chrono::sys_seconds instant, int64_t nanosecond, std::shared_ptr<TimeZone> zone);
    static std::shared_ptr<DateTime> Adopt(std::chrono::sys_seconds instant, int64_t nanosecond,
                                           const TimeZone& zone);
    std::shared_ptr<DateTime> Shifted(int64_t sign, int64_t years, int64_t months, int64_t days,
                                      int64_t hours, int64_t minutes, int64_t seconds,
                                      int64_t nanoseconds) const;
    // The wall-clock reading in this one's zone, as seconds of a GMT calendar.
    std::chrono::sys_seconds WallClock() const;

    std::chrono::sys_seconds instant_;
    int64_t nanosecond_ = 0;  // 0 .. 999,999,999 past instant_
    std::shared_ptr<TimeZone> zone_;
};
