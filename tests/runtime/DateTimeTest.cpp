#include "runtime/DateTime.h"

#include <gtest/gtest.h>

#include "fakes/ZoneGuard.h"
#include "runtime/Date.h"
#include "runtime/RuntimeException.h"

namespace {

std::shared_ptr<TimeZone> Fixed(int64_t offset) {
    return std::make_shared<TimeZone>(offset);
}

// The message of the InvalidArgumentException that make raises, whose number is
// always 0; empty when it raises none.
template <typename Make>
std::string Refusal(Make make) {
    try {
        make();
    } catch (const InvalidArgumentException& error) {
        EXPECT_EQ(error.ErrorNumber(), 0);
        return error.Message();
    }
    return "";
}

TEST(DateTime, RangeChecksInOrder) {
    struct Row {
        int64_t year, month, day, hour, minute, second;
        const char* message;  // empty: accepted
    };
    const Row rows[] = {
        {0, 13, 1, 0, 0, 0, "Month out of range"},  // the month goes first
        {2020, 0, 1, 0, 0, 0, "Month out of range"},
        {0, 1, 1, 0, 0, 0, "Year out of range"},
        {1900, 2, 29, 0, 0, 0, "Day out of range"},
        {2000, 2, 29, 0, 0, 0, ""},
        {2024, 2, 29, 0, 0, 0, ""},
        {2023, 2, 29, 0, 0, 0, "Day out of range"},
        {2021, 4, 31, 0, 0, 0, "Day out of range"},
        {2021, 5, 0, 0, 0, 0, "Day out of range"},
        {2021, 5, 32, 0, 0, 0, "Day out of range"},
        {2021, 12, 31, 23, 59, 59, ""},
        {2021, 5, 6, 24, 0, 0, "Hour out of range"},
        {2021, 5, 6, -1, 0, 0, "Hour out of range"},
        {2021, 5, 6, 0, 60, 0, "Minute out of range"},
        {2021, 5, 6, 0, -1, 0, "Minute out of range"},
        {2021, 5, 6, 0, 0, 60, "Second out of range"},  // no leap second
        {2021, 5, 6, 0, 0, -1, "Second out of range"},
        {1, 1, 1, 0, 0, 0, ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Refusal([&] {
                      DateTime(row.year, row.month, row.day, row.hour, row.minute, row.second, 0,
                               Fixed(0));
                  }),
                  row.message)
            << row.year << "-" << row.month << "-" << row.day << " " << row.hour << ":"
            << row.minute << ":" << row.second;
    }
}

TEST(DateTime, FieldsAndSecondsAgreeInTheirZone) {
    const DateTime date(2021, 3, 31, 1, 46, 40, 5, Fixed(3600));
    EXPECT_DOUBLE_EQ(date.SecondsFrom1970(), 1617151600.000000005);
    EXPECT_EQ(date.Hour(), 1);
    EXPECT_EQ(date.Nanosecond(), 5);
    const DateTime same(1617151600.0, Fixed(-19800));
    EXPECT_EQ(same.SQLDateTime(), "2021-03-30 19:16:40");
    EXPECT_EQ(DateTime(-0.5, Fixed(0)).SQLDateTime(), "1969-12-31 23:59:59");
    EXPECT_THROW(DateTime(1e300, nullptr), InvalidArgumentException);
}

TEST(DateTime, CompareIsOnTheInstant) {
    const auto a = std::make_shared<DateTime>(1000.0, Fixed(0));
    const auto b = std::make_shared<DateTime>(1000.25, Fixed(0));
    const auto c = std::make_shared<DateTime>(1970, 1, 1, 5, 16, 40, 0, Fixed(5 * 3600));
    EXPECT_EQ(a->Operator_Compare(nullptr), 1);
    EXPECT_EQ(a->Operator_Compare(b), -1);
    EXPECT_EQ(b->Operator_Compare(a), 1);
    EXPECT_EQ(a->Operator_Compare(c), 0);  // zones play no part
}

TEST(DateTime, LegacyDateConversion) {
    auto date = std::make_shared<Date>();
    date->Year = 2021;
    date->Month = 1;
    date->Day = 1;
    date->Hour = 0;
    date->Minute = 0;
    date->Second = 0;
    date->GMTOffset = 2.5;
    date->Minute -= 1;  // borrows from the hour, and the day and year before it
    const auto converted = DateTime::Operator_Convert(date);
    EXPECT_EQ(converted->SQLDateTime(), "2020-12-31 23:59:00");
    EXPECT_EQ(converted->Timezone()->SecondsFromGMT(), 9000);
    EXPECT_THROW(DateTime::Operator_Convert(nullptr), UnsupportedOperationException);

    // A date taken now keeps the current zone and loses only the fraction.
    const auto now = DateTime::Operator_Convert(std::make_shared<Date>());
    const auto precise = DateTime::Now(nullptr);
    EXPECT_LE(now->SecondsFrom1970(), precise->SecondsFrom1970());
    EXPECT_GT(now->SecondsFrom1970(), precise->SecondsFrom1970() - 5);
    EXPECT_EQ(now->Timezone()->SecondsFromGMT(), TimeZone::Current()->SecondsFromGMT());
}

TEST(DateTime, FromStringForms) {
    EXPECT_EQ(DateTime::FromString("2020-05-06", Fixed(0))->SQLDateTime(), "2020-05-06 00:00:00");
    EXPECT_EQ(DateTime::FromString("2020-05-06 07:08:09", Fixed(7200))->SecondsFrom1970(),
              1588741689.0);
    EXPECT_EQ(DateTime::FromString("2020-5-6 7:08", Fixed(0))->SQLDateTime(),
              "2020-05-06 07:08:00");
    for (const char* bad : {"2020", "2020-05", "2020-05-06 Sat", "2020-13-01", "2020-02-30",
                            "2020-05-06 25:00:00", "2020-05-06T07:08:09", "2020-05-06 07"}) {
        EXPECT_NE(Refusal([&] { DateTime::FromString(bad, nullptr); }), "") << bad;
    }
    EXPECT_EQ(Refusal([] { DateTime::FromString("", nullptr); }), "Date string cannot be empty");
}

TEST(TimeZone, Names) {
    ZoneGuard zone("America/New_York");
    struct Row {
        const char* name;
        int64_t offset;
    };
    const Row fixed[] = {{"+04", 14400},  {"-0330", -12600}, {"+05:45", 20700}, {"UTC", 0},
                         {"GMT", 0},      {"CET", 3600},     {"PST", -28800},   {"IST", 19800},
                         {"EST", -18000}, {"EDT", -14400},   {"+00", 0}};
    for (const Row& row : fixed) {
        EXPECT_EQ(TimeZone(row.name).SecondsFromGMT(), row.offset) << row.name;
    }
    EXPECT_EQ(TimeZone("").Name(), "America/New_York");
    EXPECT_TRUE(TimeZone("Asia/Kolkata").IsRegion());
    EXPECT_EQ(TimeZone("Asia/Kolkata").SecondsFromGMT(), 19800);
    for (const char* bad : {"Nowhere", "+123", "+25", "Europe/Atlantis", "-"}) {
        EXPECT_THROW(TimeZone{std::string(bad)}, InvalidArgumentException) << bad;
    }
    // The current zone's abbreviations win: China's "CST" is not America's.
    ZoneGuard china("Asia/Shanghai");
    EXPECT_EQ(TimeZone("CST").SecondsFromGMT(), 8 * 3600);
}

TEST(DateTime, NowAndDaysBackAcrossAClockChange) {
    ZoneGuard zone("Europe/Berlin");
    // 2021-03-28 is the spring change in Berlin: 5 calendar days before noon on
    // April 1st is noon on March 27th, 119 hours earlier.
    const auto april = std::make_shared<DateTime>(2021, 4, 1, 12, 0, 0, 0, nullptr);
    const auto before = april->SubtractInterval(0, 0, 5, 0, 0, 0, 0);
    EXPECT_EQ(before->SQLDateTime(), "2021-03-27 12:00:00");
    EXPECT_DOUBLE_EQ(april->SecondsFrom1970() - before->SecondsFrom1970(), 119 * 3600.0);
    EXPECT_EQ(before->Timezone()->SecondsFromGMT(), 3600);
    EXPECT_EQ(april->Timezone()->SecondsFromGMT(), 7200);  // the date's own offset
    EXPECT_EQ(april->AddInterval(0, 1, 0, 0, 0, 0, 0)->SQLDateTime(), "2021-05-01 12:00:00");
    const auto march31 = std::make_shared<DateTime>(2021, 3, 31, 8, 0, 0, 0, nullptr);
    EXPECT_EQ(march31->SubtractInterval(0, 1, 0, 0, 0, 0, 0)->SQLDateTime(), "2021-02-28 08:00:00");

    EXPECT_FALSE(DateTime::Now(nullptr)->Timezone()->IsRegion());  // adopted by its abbreviation
}

TEST(DateTime, NowWorksInEveryZone) {
    for (const char* name : {"UTC", "Asia/Kolkata", "America/New_York", "Asia/Dubai",
                             "Australia/Lord_Howe", "Asia/Kathmandu", "America/St_Johns",
                             "Pacific/Chatham", "America/Sao_Paulo", "Africa/Casablanca"}) {
        ZoneGuard zone(name);
        const auto now = DateTime::Now(nullptr);
        EXPECT_EQ(now->Timezone()->SecondsFromGMT(),
                  TimeZone::Current()->SecondsFromGMTAt(
                      std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now())))
            << name;
        EXPECT_EQ(now->SubtractInterval(0, 0, 5, 0, 0, 0, 0)->Operator_Compare(now), -1) << name;
    }
}

}  // namespace
