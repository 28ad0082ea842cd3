#include "datetime/ExtensionDate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "fakes/ZoneGuard.h"
#include "runtime/RuntimeException.h"

namespace {

using ExtensionDate::ISO8601TimeStampZRV;
using ExtensionDate::NewDateTimeFromLegacyDateTotalSeconds;
using ExtensionDate::ParseTimeStampZRV;

TEST(ParseTimeStampZRV, WorkedExamples) {
    struct Row {
        const char* text;
        const char* fields;  // "YYYY-MM-DD HH:MM:SS"
        int64_t offset;
        int64_t nanosecond;
    };
    const Row rows[] = {
        {"2020-05-06T07:08:09Z", "2020-05-06 07:08:09", 0, 0},
        {"2020-05-06T07:08:09", "2020-05-06 07:08:09", 0, 0},
        {"2020-05-06T07:08:09+02:00", "2020-05-06 07:08:09", 7200, 0},
        {"2020-05-06T07:08:09-05:30", "2020-05-06 07:08:09", -19800, 0},
        {"2020-05-06T07:08:09+02", "2020-05-06 07:08:09", 7200, 0},
        {"2020-05-06T07:08:09-0130", "2020-05-06 07:08:09", -5400, 0},
        {"2020-05-06T07:08:09.5Z", "2020-05-06 07:08:09", 0, 500000000},
        {"2020-05-06t07:08:09z", "2020-05-06 07:08:09", 0, 0},
        {"2020-05-06T07:08", "2020-05-06 07:08:00", 0, 0},
        {"2020-01-02T03:04:Z", "2020-01-02 03:04:00", 0, 0},
        {"--T07:08:09Z", "0001-01-01 07:08:09", 0, 0},
        {"2020-05-06T07:08:9Z", "2020-05-06 07:08:09", 0, 0},
        {"2020-05-06T07:08:09+Nowhere", "2020-05-06 07:08:09", 0, 0},
        {"2020-05-06T07:08:09+5:3", "2020-05-06 07:08:09", 18180, 0},
        {"2020-05-06T07:08:09-00:00", "2020-05-06 07:08:09", 0, 0},
        {"2020-05-06T07:08:09+18:00", "2020-05-06 07:08:09", 64800, 0},  // the widest zones
        {"2020-05-06T07:08:09-18:00", "2020-05-06 07:08:09", -64800, 0},
        {"2020-05-06T07:08:09+x:y", "2020-05-06 07:08:09", 0, 0},
        {"2020-05-06T07:08:09.123456789Z", "2020-05-06 07:08:09", 0, 123456789},
        {"2020-05-06T07:08:09.1234567899Z", "2020-05-06 07:08:09", 0, 123456789},
        {"2020-05-06T07:08:09.25.75Z", "2020-05-06 07:08:09", 0, 250000000},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const auto date = ParseTimeStampZRV(row.text);
        ASSERT_NE(date, nullptr);
        EXPECT_EQ(date->SQLDateTime(), row.fields);
        EXPECT_EQ(date->Timezone()->SecondsFromGMT(), row.offset);
        EXPECT_EQ(date->Nanosecond(), row.nanosecond);
    }
    // No timestamps; "t" counts as "T", so "2020-05-06 Sat" is scanned, and fails.
    for (const char* text :
         {"", "2020-05-06T07:08:09+123", "2020-05-06T07:08:09+01:02:03", "2020-05-06T07:08:09Zoo",
          "2020-05-06T7:08:09Z", "2020-02-30T07:08:09Z", "2020-05-06T24:08:09Z",
          "2020-05-06T07:08:60Z", "20-05-06T07:08:09Z", "T07:08:09Z", "2020-01-02T03:04Z",
          "2020-05-06 Sat", "2020-05-06T07:08:09é"}) {
        EXPECT_EQ(ParseTimeStampZRV(text), nullptr) << text;
    }
}

TEST(ParseTimeStampZRV, NumbersAndPlainDatesAreLocal) {
    // A number is seconds since 1970, not a year, in the current zone.
    for (const char* text : {"2020", "-86400", "1.5"}) {
        SCOPED_TRACE(text);
        const auto date = ParseTimeStampZRV(text);
        ASSERT_NE(date, nullptr);
        EXPECT_DOUBLE_EQ(date->SecondsFrom1970(), std::stod(text));
        EXPECT_EQ(date->Timezone()->SecondsFromGMT(),
                  TimeZone::Current()->SecondsFromGMTAt(std::chrono::sys_seconds{
                      std::chrono::seconds{static_cast<int64_t>(std::stod(text))}}));
    }
    // Without "T" a date goes whole to the calendar, in the current zone.
    const auto plain = ParseTimeStampZRV("2020-05-06 07:08:09");
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(plain->SQLDateTime(), "2020-05-06 07:08:09");
    EXPECT_EQ(plain->SecondsFrom1970(),
              DateTime(2020, 5, 6, 7, 8, 9, 0, nullptr).SecondsFrom1970());
    EXPECT_EQ(ParseTimeStampZRV("2020-05-06")->SQLDateTime(), "2020-05-06 00:00:00");
    EXPECT_EQ(ParseTimeStampZRV("2020-13-06"), nullptr);
}

TEST(ParseTimeStampZRV, RefusedOffsetsPassUp) {
    // Found by the fuzzer: hours of offset beyond any zone made a date no calendar holds.
    for (const char* text :
         {"2020-05-06T07:08:09+99", "1200-05-06T07:08:0.95-0444444444444$44444445:5",
          "2020-05-06T07:08:09+18:01"}) {
        EXPECT_THROW(ParseTimeStampZRV(text), InvalidArgumentException) << text;
    }
}

TEST(ISO8601TimeStampZRV, Shapes) {
    struct Row {
        int64_t year, month, offset;
        const char* expected;
    };
    const Row rows[] = {
        {2020, 5, 0, "2020-05-06T07:08:09Z"},
        {2020, 5, 7200, "2020-05-06T07:08:09+02:00"},
        {2020, 5, -19800, "2020-05-06T07:08:09-05:30"},
        {2020, 5, 20700, "2020-05-06T07:08:09+05:45"},
        {2020, 5, 30, "2020-05-06T07:08:09+00:00"},  // not 0, yet no whole minute
        {1, 3, 0, "0001-03-06T07:08:09Z"},
    };
    for (const Row& row : rows) {
        const auto date = std::make_shared<DateTime>(row.year, row.month, 6, 7, 8, 9, 999,
                                                     std::make_shared<TimeZone>(row.offset));
        EXPECT_EQ(ISO8601TimeStampZRV(date), row.expected);
    }
    EXPECT_THROW(ISO8601TimeStampZRV(nullptr), NilObjectException);
}

TEST(ISO8601TimeStampZRV, ReadsBackToTheSameSecond) {
    const auto now = DateTime::Now(nullptr);
    const auto dates = {
        now,  // with a fraction of a second
        std::make_shared<DateTime>(2021, 7, 1, 12, 0, 0, 0, nullptr),  // summer, local
        std::make_shared<DateTime>(2021, 1, 1, 12, 0, 0, 0, nullptr),  // winter, local
        std::make_shared<DateTime>(2021, 3, 31, 1, 46, 40, 0, std::make_shared<TimeZone>(3600)),
    };
    for (const auto& date : dates) {
        const std::string text = ISO8601TimeStampZRV(date);
        const auto back = ParseTimeStampZRV(text);
        ASSERT_NE(back, nullptr) << text;
        EXPECT_EQ(static_cast<int64_t>(back->SecondsFrom1970()),
                  static_cast<int64_t>(std::floor(date->SecondsFrom1970())))
            << text;
        EXPECT_EQ(ISO8601TimeStampZRV(back), text);
    }
    EXPECT_EQ(ParseTimeStampZRV(ISO8601TimeStampZRV(
                  std::make_shared<DateTime>(10000, 1, 1, 0, 0, 0, 0, nullptr))),
              nullptr);  // five digits of year do not read back
}

TEST(NewDateTimeFromLegacyDateTotalSeconds, KeepsTheWallClock) {
    struct Row {
        const char* zone;
        double total;
        double secondsFrom1970;
        const char* wallClock;
    };
    const Row rows[] = {
        {"UTC", 2082844800, 0, "1970-01-01 00:00:00"},
        {"Etc/GMT-1", 3700000000, 1617151600, "2021-03-31 01:46:40"},
        {"UTC", 0, -2082844800, "1904-01-01 00:00:00"},
    };
    for (const Row& row : rows) {
        ZoneGuard zone(row.zone);
        const auto date = NewDateTimeFromLegacyDateTotalSeconds(row.total);
        EXPECT_EQ(date->SecondsFrom1970(), row.secondsFrom1970) << row.zone << " " << row.total;
        EXPECT_EQ(date->SQLDateTime(), row.wallClock) << row.zone << " " << row.total;
    }
}

}  // namespace
