#include "datetime/ExtensionDate.h"

#include <cstdint>
#include <optional>
#include <vector>

#include "runtime/RuntimeException.h"
#include "runtime/Text.h"

namespace ExtensionDate {

namespace {

// Seconds from 1904-01-01 to 1970-01-01.
constexpr double kLegacyEpochOffset = 2082844800.0;
constexpr const char* kNilDate = "The date is Nil.";

struct Fields {
    std::string year, month, day, hour, minute, second, zone;
};

// Walks the characters with a named state; nullopt when a character is out of place.
std::optional<Fields> Scan(const std::string& text) {
    Fields fields;
    std::string state = "year";
    for (const std::string& c : Split(text, "")) {
        if (state == "year" && c == "-") {
            state = "month";
            continue;
        }
        if (state == "month" && c == "-") {
            state = "day";
            continue;
        }
        if (state == "day" && TextEquals(c, "T")) {
            state = "hour";
            continue;
        }
        if (state == "hour" && c == ":") {
            state = "minute";
            continue;
        }
        if (state == "minute" && c == ":") {
            state = "second";
            continue;
        }
        if (state == "second" && (TextEquals(c, "Z") || c == "+" || c == "-")) {
            state = "timezone";  // the character opens the zone field
        }
        if (state == "timezone") {
            fields.zone += c;
        } else if (state == "second") {
            if (c != "." && !IsNumeric(c))
                return std::nullopt;
            fields.second += c;
        } else {
            if (!IsNumeric(c))
                return std::nullopt;
            std::string& field = state == "year"    ? fields.year
                                 : state == "month" ? fields.month
                                 : state == "day"   ? fields.day
                                 : state == "hour"  ? fields.hour
                                                    : fields.minute;
            field += c;
        }
    }
    return fields;
}

// The zone field as seconds east of GMT; nullopt when its shape is wrong.
std::optional<double> OffsetOf(const std::string& zone) {
    if (zone.empty() || TextEquals(zone, "Z"))
        return 0.0;
    const std::string sign = Left(zone, 1);
    if (sign != "-" && sign != "+")
        return std::nullopt;
    const std::string rest = Middle(zone, 1, Length(zone) - 1);
    double offset = 0.0;
    if (IndexOf(rest, ":") != -1) {
        if (CountFields(rest, ":") != 2)
            return std::nullopt;
        offset = Val(NthField(rest, ":", 1)) * 3600 + Val(NthField(rest, ":", 2)) * 60;
    } else if (IsNumeric(rest)) {
        if (Length(rest) == 2) {
            offset = Val(rest) * 3600;
        } else if (Length(rest) == 4) {
            offset = Val(Middle(rest, 0, 2)) * 3600 + Val(Middle(rest, 2, 2)) * 60;
        } else {
            return std::nullopt;
        }
    } else {
        // A zone name; a name no zone has reads as GMT.
        try {
            return static_cast<double>(TimeZone(rest).SecondsFromGMT());
        } catch (const InvalidArgumentException&) {
            return 0.0;
        }
    }
    return sign == "-" ? -offset : offset;
}

int64_t Whole(double value) {
    // Cut toward zero; values no field can hold are left to the range checks.
    if (!(value > -9.2e18 && value < 9.2e18))
        return INT64_MAX;
    return static_cast<int64_t>(value);
}

std::string TwoDigits(int64_t value) {
    return Format(static_cast<double>(value), "00");
}

}  // namespace

std::shared_ptr<DateTime> ParseTimeStampZRV(const std::string& text) {
    if (text.empty())
        return nullptr;
    if (IsNumeric(text))
        return std::make_shared<DateTime>(Val(text), nullptr);
    if (IndexOf(text, "T") == -1 && IsNumeric(Left(text, 4))) {
        try {
            return DateTime::FromString(text, nullptr);
        } catch (const RuntimeException&) {
            return nullptr;
        }
    }
    std::optional<Fields> fields = Scan(text);
    if (!fields)
        return nullptr;
    if (fields->year.empty())
        fields->year = "0001";
    if (fields->month.empty())
        fields->month = "01";
    if (fields->day.empty())
        fields->day = "01";
    if (Length(fields->year) != 4 || Length(fields->month) != 2 || Length(fields->day) != 2 ||
        Length(fields->hour) != 2 || Length(fields->minute) != 2) {
        return nullptr;
    }
    double nanoseconds = 0.0;
    if (IndexOf(fields->second, ".") != -1) {
        nanoseconds = Val("0." + NthField(fields->second, ".", 2)) * 1000000000.0;
        fields->second = NthField(fields->second, ".", 1);
    }
    const std::optional<double> offset = OffsetOf(fields->zone);
    if (!offset)
        return nullptr;
    auto zone = std::make_shared<TimeZone>(Whole(*offset));
    try {
        return std::make_shared<DateTime>(Whole(Val(fields->year)), Whole(Val(fields->month)),
                                          Whole(Val(fields->day)), Whole(Val(fields->hour)),
                                          Whole(Val(fields->minute)), Whole(Val(fields->second)),
                                          Whole(nanoseconds), std::move(zone));
    } catch (const InvalidArgumentException&) {
        return nullptr;
    }
}

std::string ISO8601TimeStampZRV(const std::shared_ptr<DateTime>& date) {
    if (date == nullptr)
        throw NilObjectException(kNilDate);
    std::string text = Format(static_cast<double>(date->Year()), "0000") + "-" +
                       TwoDigits(date->Month()) + "-" + TwoDigits(date->Day()) + "T" +
                       TwoDigits(date->Hour()) + ":" + TwoDigits(date->Minute()) + ":" +
                       TwoDigits(date->Second());
    auto offset = static_cast<double>(date->Timezone()->SecondsFromGMT());
    if (offset == 0)
        return text + "Z";
    if (offset > 0) {
        text += "+";
    } else {
        text += "-";
        offset = -offset;
    }
    const int64_t minutes = static_cast<int64_t>(offset) / 60;
    return text + TwoDigits(minutes / 60) + ":" + TwoDigits(minutes % 60);
}

std::shared_ptr<DateTime> NewDateTimeFromLegacyDateTotalSeconds(double totalSeconds) {
    const auto current = TimeZone::Current();
    const double secondsFrom1970 =
        totalSeconds - kLegacyEpochOffset - static_cast<double>(current->SecondsFromGMT());
    return std::make_shared<DateTime>(secondsFrom1970, current);
}

}  // namespace ExtensionDate
