#include "runtime/Text.h"

#include <gtest/gtest.h>

namespace {

TEST(Format, Masks) {
    constexpr const char* kWhole = "-###,###,###,###,###,###,##0";
    constexpr const char* kOneDecimal = "-###,###,###,###,###,###,##0.0";
    struct Row {
        double number;
        const char* mask;
        const char* expected;
    };
    const Row rows[] = {
        {7, "00", "07"},
        {123, "00", "123"},
        {1, "0000", "0001"},
        {0, kWhole, "0"},
        {0.4, kWhole, "0"},
        {999.499, kWhole, "999"},
        {999.501, kWhole, "1,000"},
        {12345000, kWhole, "12,345,000"},
        {-2048, kWhole, "-2,048"},
        {52.4288, kOneDecimal, "52.4"},
        {999.949999, kOneDecimal, "999.9"},
        {999.96, kOneDecimal, "1,000.0"},
        {0, kOneDecimal, "0.0"},
        // Exactly half-way values round away from zero; 0.05 is a little above
        // one half-tenth in binary, 0.15 a little below.
        {2.5, kWhole, "3"},
        {1.5, kWhole, "2"},
        {-2.5, kWhole, "-3"},
        {1.25, kOneDecimal, "1.3"},
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

TEST(Val, ReadsTheLeadingNumber) {
    struct Row {
        const char* text;
        double expected;
    };
    const Row rows[] = {{"", 0},       {"abc", 0},
                        {"12", 12},    {"2b3", 2},
                        {"3 beta", 3}, {"-2", -2},
                        {"+5", 5},     {"1.2.3", 1.2},
                        {".5", 0.5},   {"  42", 42},
                        {"1e3", 1000}, {"1e", 1},
                        {"-", 0},      {"0.1234567899", 0.1234567899}};
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

TEST(Fields, SplitNthFieldCountFields) {
    EXPECT_EQ(Split("1.2.3", "."), (std::vector<std::string>{"1", "2", "3"}));
    EXPECT_EQ(Split("", "."), (std::vector<std::string>{""}));
    EXPECT_EQ(Split("a..b.", "."), (std::vector<std::string>{"a", "", "b", ""}));
    EXPECT_EQ(Split("Zé:", ""), (std::vector<std::string>{"Z", "é", ":"}));
    EXPECT_EQ(NthField("10.x.3", ".", 2), "x");
    EXPECT_EQ(NthField("1.5", ".", 3), "");
    EXPECT_EQ(NthField("1.5", ".", 0), "");
    EXPECT_EQ(NthField("52.4 MB", " ", 2), "MB");
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
    EXPECT_EQ(Replace("1.0 MB", ".0 ", " "), "1 MB");
    EXPECT_EQ(RuntimeStringCompare("-TRASHCHANGED", "-TrashChanged"), 0);
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
    EXPECT_EQ(Join({"a", "b", "c"}, "\n"), "a\nb\nc");
    EXPECT_EQ(Str(static_cast<int64_t>(-15)), "-15");
    EXPECT_EQ(Str(2.5), "2.5");
}

}  // namespace
