#include "runtime/Date.h"

#include <date/date.h>

#include <chrono>

#include "runtime/TimeZone.h"

Date::Date() {
    const auto zone = TimeZone::Current();
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const int64_t offset = zone->SecondsFromGMTAt(now);
    const auto wall = now + std::chrono::seconds{offset};
    const auto day = std::chrono::floor<std::chrono::days>(wall);
    const date::year_month_day ymd{day};
    const date::hh_mm_ss<std::chrono::seconds> time{wall - day};
    Year = static_cast<int>(ymd.year());
    Month = static_cast<unsigned>(ymd.month());
    Day = static_cast<unsigned>(ymd.day());
    Hour = time.hours().count();
    Minute = time.minutes().count();
    Second = time.seconds().count();
    GMTOffset = static_cast<double>(offset) / 3600.0;
}
