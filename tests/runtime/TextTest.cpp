#include "runtime/Text.h"

#include <gtest/gtest.h>

namespace {

// Format's grouping and rounding at the thresholds of file sizes are walked through
// FormatFileSize, and two-digit fields through SQLDateTime; these are the masks and
// signs they do not use.
TEST(Format, Masks) {
    constexpr const char* kWhole = "-###,###,###,###,###,###,##0";
    constexpr const char* kOneDecimal = "-###,###,###,###,###,###,##0.0";
    struct Row {
        double number;
        const char* mask;
        const char* expected;
    };
    const Row rows[] = {
        {123, "00", "123"},
        {1, "0000", "0001"},
        {-2048, kWhole, "-2,048"},
        // Exactly half-way values round away from zero; 0.05 is a little above
        // one half-tenth in binary, 0.15 a little below.
        {-2.5, kWhole, "-3"},
        {0.05, kOneDecimal, "0.1"},
        {0.15, kOneDecimal, "0.1"},
        {-0.4, kWhole, "0"},
        {12.5, "#.##", "12.5"},
        {3, "0.00 MB", "3.00 MB"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Format(row.number, row.mask), row.expected) << row.number << " with " << row.mask;
    }
}

// Fields of versions ("2b3", "3 beta", "-2", "abc") are read through CompareVersions.
TEST(Val, ReadsTheLeadingNumber) {
    struct Row {
        const char* text;
        double expected;
    };
    const Row rows[] = {{"", 0},       {"+5", 5},    {"1.2.3", 1.2},
                        {".5", 0.5},   {"  42", 42}, {"-", 0},
                        {"1e3", 1000}, {"1e", 1},    {"0.1234567899", 0.1234567899}};
    for (const Row& row : rows)
        EXPECT_DOUBLE_EQ(Val(row.text), row.expected) << row.text;
}

TEST(IsNumeric, WholeTextOnly) {
    for (const char* yes : {"0", "1000", "-1", "+0200", "1.5", ".5", "5.", "1e5", "0130"}) {
        EXPECT_TRUE(IsNumeric(yes)) << yes;
    }
    for (const char* no : {"", "-", ":", ".", "T", "Z", "1 ", " 1", "2020-05-06T07:08:09Z",
                           "2020-05-06", "1e", "--1", "0x10", "inf"}) {
        EXPECT_FALSE(IsNumeric(no)) << no;
    }
}

// Split by a separator, empty fields included, is walked through FileExtension.
TEST(Fields, SplitNthFieldCountFields) {
    EXPECT_EQ(Split("", "."), (std::vector<std::string>{""}));
    EXPECT_EQ(Split("Zé:", ""), (std::vector<std::string>{"Z", "é", ":"}));
    EXPECT_EQ(NthField("10.x.3", ".", 2), "x");
    EXPECT_EQ(NthField("1.5", ".", 3), "");
    EXPECT_EQ(NthField("1.5", ".", 0), "");
    EXPECT_EQ(CountFields("5:3", ":"), 2);
    EXPECT_EQ(CountFields("", ":"), 1);
    EXPECT_EQ(CountFields("01:02:03", ":"), 3);
}

TEST(Search, IgnoresCase) {
    EXPECT_EQ(InStr(0, "Some NO ERROR found", "no error"), 6);
    EXPECT_EQ(InStr(1, "abc", "d"), 0);
    EXPECT_EQ(InStr(0, "abc", ""), 0);
    EXPECT_EQ(IndexOf("2020-05-06t07", "T"), 10);
    EXPECT_EQ(IndexOf("héllo", "L"), 2);  // characters, not bytes
    EXPECT_EQ(IndexOf("abc", "c", 3), -1);
    EXPECT_EQ(Replace("The ^0 and ^0", "^0", "<b>^0&</b>"), "The <b>^0&</b> and ^0");
    EXPECT_LT(RuntimeStringCompare("a", "B"), 0);
    EXPECT_FALSE(TextEquals("app", "app "));
}

TEST(Search, ArrayIndexOfIsExact) {
    const std::vector<std::string> names{"Notes.app", "notes.app", "x"};
    EXPECT_EQ(IndexOf(names, "notes.app"), 1);
    EXPECT_EQ(IndexOf(names, "NOTES.APP"), -1);
    EXPECT_EQ(IndexOf(names, "Notes.app", 1), -1);
}

TEST(Substrings, CountCharacters) {
    EXPECT_EQ(Left("2020-05-06", 4), "2020");
    EXPECT_EQ(Left("ab", 9), "ab");
    EXPECT_EQ(Right("0130", 2), "30");
    EXPECT_EQ(Middle("0130", 2, 2), "30");
    EXPECT_EQ(Middle("über", 1, 2), "be");
    EXPECT_EQ(Length("über"), 4);
    EXPECT_EQ(Length("\xff\xfe"), 2);  // stray bytes count one each
    EXPECT_EQ(Str(2.5), "2.5");
}

}  // namespace
