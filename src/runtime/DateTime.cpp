#include "runtime/DateTime.h"

#include <date/date.h>

#include <array>
#include <cmath>
#include <utility>

#include "runtime/Date.h"
#include "runtime/RuntimeException.h"
#include "runtime/Text.h"

namespace {

using std::chrono::days;
using std::chrono::seconds;
using std::chrono::sys_seconds;

constexpr const char* kMonthOutOfRange = "Month out of range";
constexpr const char* kYearOutOfRange = "Year out of range";
constexpr const char* kDayOutOfRange = "Day out of range";
constexpr const char* kHourOutOfRange = "Hour out of range";
constexpr const char* kMinuteOutOfRange = "Minute out of range";
constexpr const char* kSecondOutOfRange = "Second out of range";
constexpr const char* kSecondsOutOfRange = "Seconds out of range";
constexpr const char* kEmptyDateString = "Date string cannot be empty";
constexpr const char* kUnreadableDateString = "Cannot parse date string: ";
constexpr const char* kNilDate = "Converting a Nil Date to DateTime is not supported";

// The calendar library reaches these years; beyond them no date can be built.
constexpr int64_t kLastYear = 32767;
constexpr double kMaxSeconds = 1.0e12;
constexpr int64_t kNanosPerSecond = 1000000000;

bool IsLeapYear(int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int64_t DaysInMonth(int64_t year, int64_t month) {
    static const std::array<int64_t, 12> daysInMonth{31, 28, 31, 30, 31, 30,
                                                     31, 31, 30, 31, 30, 31};
    if (month == 2)
        return IsLeapYear(year) ? 29 : 28;
    return daysInMonth[static_cast<size_t>(month - 1)];
}

// Seconds of the GMT calendar for fields that may lie outside their ranges:
// the excess carries into the larger fields.
sys_seconds CivilSeconds(int64_t year, int64_t month, int64_t day, int64_t hour, int64_t minute,
                         int64_t second) {
    const int64_t months = year * 12 + (month - 1);
    const int64_t normalYear = months >= 0 ? months / 12 : (months - 11) / 12;
    const int64_t normalMonth = months - normalYear * 12 + 1;
    if (normalYear < -kLastYear || normalYear > kLastYear) {
        throw InvalidArgumentException(kYearOutOfRange);
    }
    const date::sys_days first = date::year{static_cast<int>(normalYear)} /
                                 date::month{static_cast<unsigned>(normalMonth)} / date::day{1};
    return first + days{day - 1} + std::chrono::hours{hour} + std::chrono::minutes{minute} +
           seconds{second};
}

// Splits a nanosecond count that may lie outside one second.
std::pair<seconds, int64_t> SplitNanos(int64_t nanoseconds) {
    int64_t whole = nanoseconds / kNanosPerSecond;
    int64_t rest = nanoseconds % kNanosPerSecond;
    if (rest < 0)
        rest += kNanosPerSecond, --whole;
    return {seconds{whole}, rest};
}

struct Fields {
    date::year_month_day ymd;
    date::hh_mm_ss<seconds> time;
};

Fields FieldsOf(sys_seconds wallClock) {
    const auto day = std::chrono::floor<days>(wallClock);
    return {date::year_month_day{day}, date::hh_mm_ss<seconds>{wallClock - day}};
}

bool ReadNumber(std::string_view& text, size_t minDigits, size_t maxDigits, int64_t& value) {
    size_t digits = 0;
    while (digits < text.size() && digits < maxDigits && text[digits] >= '0' &&
           text[digits] <= '9') {
        ++digits;
    }
    if (digits < minDigits)
        return false;
    value = static_cast<int64_t>(Val(text.substr(0, digits)));
    text.remove_prefix(digits);
    return true;
}

bool ReadLiteral(std::string_view& text, char literal) {
    if (text.empty() || text.front() != literal)
        return false;
    text.remove_prefix(1);
    return true;
}

}  // namespace

DateTime::DateTime(sys_seconds instant, int64_t nanosecond, std::shared_ptr<TimeZone> zone)
    : instant_(instant), nanosecond_(nanosecond), zone_(std::move(zone)) {}

DateTime::DateTime(int64_t year, int64_t month, int64_t day, int64_t hour, int64_t minute,
                   int64_t second, int64_t nanosecond, std::shared_ptr<TimeZone> zone) {
    if (month < 1 || month > 12)
        throw InvalidArgumentException(kMonthOutOfRange);
    if (year < 1)
        throw InvalidArgumentException(kYearOutOfRange);
    if (day < 1 || day > DaysInMonth(year, month))
        throw InvalidArgumentException(kDayOutOfRange);
    if (static_cast<uint64_t>(hour) > 23)
        throw InvalidArgumentException(kHourOutOfRange);
    if (static_cast<uint64_t>(minute) > 59)
        throw InvalidArgumentException(kMinuteOutOfRange);
    if (static_cast<uint64_t>(second) > 59)
        throw InvalidArgumentException(kSecondOutOfRange);
    if (year > kLastYear)
        throw InvalidArgumentException(kYearOutOfRange);
    zone_ = zone != nullptr ? std::move(zone) : TimeZone::Current();
    const auto [carry, nanos] = SplitNanos(nanosecond);
    instant_ = zone_->ToInstant(CivilSeconds(year, month, day, hour, minute, second)) + carry;
    nanosecond_ = nanos;
}

DateTime::DateTime(double secondsFrom1970, std::shared_ptr<TimeZone> zone)
    : zone_(zone != nullptr ? std::move(zone) : TimeZone::Current()) {
    if (!(std::fabs(secondsFrom1970) <= kMaxSeconds)) {
        throw InvalidArgumentException(kSecondsOutOfRange);
    }
    const double whole = std::floor(secondsFrom1970);
    int64_t nanos = std::llround((secondsFrom1970 - whole) * static_cast<double>(kNanosPerSecond));
    instant_ = sys_seconds{seconds{static_cast<int64_t>(whole)}};
    if (nanos == kNanosPerSecond)
        nanos = 0, instant_ += seconds{1};
    nanosecond_ = nanos;
}

DateTime::DateTime(const Date& date) : zone_(TimeZone::Current()) {
    if (static_cast<double>(zone_->SecondsFromGMT()) / 60.0 / 60.0 != date.GMTOffset) {
        zone_ = std::make_shared<TimeZone>(static_cast<int64_t>(date.GMTOffset * 60.0 * 60.0));
    }
    instant_ = zone_->ToInstant(
        CivilSeconds(date.Year, date.Month, date.Day, date.Hour, date.Minute, date.Second));
}

std::shared_ptr<DateTime> DateTime::Adopt(sys_seconds instant, int64_t nanosecond,
                                          const TimeZone& zone) {
    // The result takes the zone its abbreviation names; where that name reads as
    // another offset than the one in force, the offset itself stands in.
    const int64_t offset = zone.SecondsFromGMTAt(instant);
    std::shared_ptr<TimeZone> adopted;
    try {
        adopted = std::make_shared<TimeZone>(zone.AbbreviationAt(instant));
    } catch (const InvalidArgumentException&) {
    }
    if (adopted == nullptr || adopted->SecondsFromGMTAt(instant) != offset) {
        adopted = std::make_shared<TimeZone>(offset);
    }
    return std::shared_ptr<DateTime>(new DateTime(instant, nanosecond, std::move(adopted)));
}

std::shared_ptr<DateTime> DateTime::Now(const std::shared_ptr<TimeZone>& zone) {
    const auto now = std::chrono::system_clock::now();
    const auto instant = std::chrono::floor<seconds>(now);
    const int64_t nanos =
        std::chrono::duration_cast<std::chrono::nanoseconds>(now - instant).count();
    auto present = Adopt(instant, nanos, *TimeZone::Current());
    if (zone == nullptr)
        return present;
    return std::shared_ptr<DateTime>(new DateTime(instant, nanos, zone));
}

std::shared_ptr<DateTime> DateTime::FromString(const std::string& text,
                                               const std::shared_ptr<TimeZone>& zone) {
    if (text.empty())
        throw InvalidArgumentException(kEmptyDateString);
    try {
        std::string_view rest(text);
        int64_t year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
        bool read = ReadNumber(rest, 1, 5, year) && ReadLiteral(rest, '-') &&
                    ReadNumber(rest, 1, 2, month) && ReadLiteral(rest, '-') &&
                    ReadNumber(rest, 1, 2, day);
        if (read && !rest.empty()) {
            read = ReadLiteral(rest, ' ') && ReadNumber(rest, 1, 2, hour) &&
                   ReadLiteral(rest, ':') && ReadNumber(rest, 2, 2, minute) &&
                   (rest.empty() || (ReadLiteral(rest, ':') && ReadNumber(rest, 2, 2, second)));
        }
        if (!read || !rest.empty())
            throw InvalidArgumentException(kUnreadableDateString + text);
        const auto zoneToUse = zone != nullptr ? zone : TimeZone::Current();
        const DateTime parsed(year, month, day, hour, minute, second, 0, zoneToUse);
        return Adopt(parsed.instant_, 0, *zoneToUse);
    } catch (const RuntimeException& error) {
        throw InvalidArgumentException(error.Message(), error.ErrorNumber());
    }
}

std::shared_ptr<DateTime> DateTime::Operator_Convert(const std::shared_ptr<Date>& date) {
    if (date == nullptr)
        throw UnsupportedOperationException(kNilDate);
    return std::make_shared<DateTime>(*date);
}

std::shared_ptr<DateTime> DateTime::Shifted(int64_t sign, int64_t years, int64_t months,
                                            int64_t days_, int64_t hours, int64_t minutes,
                                            int64_t seconds_, int64_t nanoseconds) const {
    const Fields fields = FieldsOf(WallClock());
    const int64_t monthIndex = static_cast<int>(fields.ymd.year()) * 12 +
                               static_cast<unsigned>(fields.ymd.month()) - 1 +
                               sign * (years * 12 + months);
    const int64_t year = monthIndex >= 0 ? monthIndex / 12 : (monthIndex - 11) / 12;
    const int64_t month = monthIndex - year * 12 + 1;
    if (year < -kLastYear || year > kLastYear)
        throw InvalidArgumentException(kYearOutOfRange);
    // A day the target month lacks becomes its last day, as calendars do.
    const int64_t day = std::min<int64_t>(static_cast<unsigned>(fields.ymd.day()),
                                          year >= 1 ? DaysInMonth(year, month) : 28);
    const sys_seconds wall =
        CivilSeconds(year, month, day + sign * days_, 0, 0, 0) + fields.time.to_duration();
    const auto [carry, nanos] = SplitNanos(nanosecond_ + sign * nanoseconds);
    const sys_seconds instant =
        zone_->ToInstant(wall) + seconds{sign * (hours * 3600 + minutes * 60 + seconds_)} + carry;
    return Adopt(instant, nanos, *zone_);
}

std::shared_ptr<DateTime> DateTime::SubtractInterval(int64_t years, int64_t months, int64_t days_,
                                                     int64_t hours, int64_t minutes,
                                                     int64_t seconds_, int64_t nanoseconds) const {
    return Shifted(-1, years, months, days_, hours, minutes, seconds_, nanoseconds);
}

std::shared_ptr<DateTime> DateTime::AddInterval(int64_t years, int64_t months, int64_t days_,
                                                int64_t hours, int64_t minutes, int64_t seconds_,
                                                int64_t nanoseconds) const {
    return Shifted(1, years, months, days_, hours, minutes, seconds_, nanoseconds);
}

int DateTime::Operator_Compare(const std::shared_ptr<DateTime>& other) const {
    if (other == nullptr)
        return 1;
    if (instant_ != other->instant_)
        return instant_ < other->instant_ ? -1 : 1;
    if (nanosecond_ != other->nanosecond_)
        return nanosecond_ < other->nanosecond_ ? -1 : 1;
    return 0;
}

sys_seconds DateTime::WallClock() const {
    return instant_ + seconds{zone_->SecondsFromGMTAt(instant_)};
}

int64_t DateTime::Year() const {
    return static_cast<int>(FieldsOf(WallClock()).ymd.year());
}
int64_t DateTime::Month() const {
    return static_cast<unsigned>(FieldsOf(WallClock()).ymd.month());
}
int64_t DateTime::Day() const {
    return static_cast<unsigned>(FieldsOf(WallClock()).ymd.day());
}
int64_t DateTime::Hour() const {
    return FieldsOf(WallClock()).time.hours().count();
}
int64_t DateTime::Minute() const {
    return FieldsOf(WallClock()).time.minutes().count();
}
int64_t DateTime::Second() const {
    return FieldsOf(WallClock()).time.seconds().count();
}

double DateTime::SecondsFrom1970() const {
    return static_cast<double>(instant_.time_since_epoch().count()) +
           static_cast<double>(nanosecond_) / static_cast<double>(kNanosPerSecond);
}

std::shared_ptr<TimeZone> DateTime::Timezone() const {
    return zone_->IsRegion() ? zone_->At(instant_) : zone_;
}

std::string DateTime::SQLDateTime() const {
    const auto number = [](int64_t value, const char* mask) {
        return Format(static_cast<double>(value), mask);
    };
    return number(Year(), "0000") + "-" + number(Month(), "00") + "-" + number(Day(), "00") + " " +
           number(Hour(), "00") + ":" + number(Minute(), "00") + ":" + number(Second(), "00");
}
