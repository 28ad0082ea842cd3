// TimeZone: a region of the tz database (honouring TZ), or a fixed offset from
// GMT under a name. The offset of a region is the one in force at a moment: the
// present one for a zone made by name, the date's own for the zone a DateTime
// gives, so that a date written with its offset reads back to the same instant.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "runtime/Object.h"

namespace date {
class time_zone;
}

class TimeZone final : public Object {
  public:
    // A fixed offset, positive east of Greenwich. InvalidArgumentException "Time
    // zone offset out of range" beyond 18 hours either way, wider than any zone.
    explicit TimeZone(int64_t secondsFromGMT);
    // The empty name: the current zone. Otherwise a numeric offset ("+04", "-0330",
    // "+05:45"), an abbreviation of the current zone (of any season), a common
    // abbreviation ("UTC", "GMT", "CET", "EST", "PST", "IST" ...), or an IANA name.
    // InvalidArgumentException for a name none of these reads.
    explicit TimeZone(const std::string& name);

    // The zone of the TZ variable when it names one, else the system's.
    static std::shared_ptr<TimeZone> Current();

    int64_t SecondsFromGMT() const;
    std::string Abbreviation() const;
    const std::string& Name() const { return name_; }

    // The offset and abbreviation in force at an instant.
    int64_t SecondsFromGMTAt(std::chrono::sys_seconds instant) const;
    std::string AbbreviationAt(std::chrono::sys_seconds instant) const;
    // The instant of a wall-clock reading; a reading that a clock change skips or
    // repeats takes its earliest instant.
    std::chrono::sys_seconds ToInstant(std::chrono::sys_seconds wallClock) const;
    // The same zone, answering SecondsFromGMT and Abbreviation for that instant.
    std::shared_ptr<TimeZone> At(std::chrono::sys_seconds instant) const;
    bool IsRegion() const { return region_ != nullptr; }

  private:
    TimeZone(const date::time_zone* region, std::string name);

    const date::time_zone* region_ = nullptr;
    int64_t fixedOffset_ = 0;
    std::string name_;
    std::optional<std::chrono::sys_seconds> at_;
};
