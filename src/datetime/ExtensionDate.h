// The timestamp text in which dates are stored ("2020-05-06T07:08:09Z",
// "2020-05-06T07:08:09+02:00"), and the older stored number of seconds since
// 1904 in local time.
#pragma once

#include <memory>
#include <string>

#include "runtime/DateTime.h"

namespace ExtensionDate {

// The date a stored text names, or nil when it is no timestamp this reads: the
// writer's form (a missing zone means GMT), a number of seconds since 1970, or a
// date without "T" in the current zone. Raises only what the calendar raises
// other than InvalidArgumentException, and a refused fixed offset.
std::shared_ptr<DateTime> ParseTimeStampZRV(const std::string& text);

// The date in its own zone as "YYYY-MM-DDTHH:MM:SS" and "Z" or "+HH:MM"/"-HH:MM";
// no fraction of a second. NilObjectException for a nil date.
std::string ISO8601TimeStampZRV(const std::shared_ptr<DateTime>& date);

// The legacy stored number: seconds since 1904-01-01 00:00:00 local time, read
// with the current zone's present offset.
std::shared_ptr<DateTime> NewDateTimeFromLegacyDateTotalSeconds(double totalSeconds);

}  // namespace ExtensionDate
