#include "files/GlobalMethods.h"

#include <gtest/gtest.h>

#include "fakes/FakeSystemInfo.h"

namespace {

using GlobalMethods::CompareVersions;
using GlobalMethods::GetSystemVersion;
using GlobalMethods::IsAtLeastOSVersion;

TEST(CompareVersions, WorkedComparisons) {
    struct Row {
        const char* first;
        const char* second;
        int64_t expected;
    };
    const Row rows[] = {
        {"1.2.3", "1.2.3", 0},  {"1.2", "1.2.0", 0},
        {"1.2.3", "1.2.4", -1}, {"2", "1.9.9", 1},
        {"1.10", "1.9", 1},     {"1.2.3.4", "1.2.3.9", 0},
        {"1.2b3", "1.2.0", 0},  {"1.2.3 beta", "1.2.3", 0},
        {"abc", "0.0.0", 0},    {"", "0", 0},
        {"", "1", -1},          {"1.-2", "1.0", -1},
    };
    // Each row is also read the other way round.
    for (const Row& row : rows) {
        EXPECT_EQ(CompareVersions(row.first, row.second), row.expected)
            << row.first << " vs " << row.second;
        EXPECT_EQ(CompareVersions(row.second, row.first), -row.expected)
            << row.second << " vs " << row.first;
    }
}

TEST(IsAtLeastOSVersion, AgainstTheRunningSystem) {
    FakeSystemInfo system(10, 15, 7, "macOS");
    EXPECT_EQ(GetSystemVersion(true), "10.15.7");
    EXPECT_EQ(GetSystemVersion(false), "macOS 10.15.7");
    // How versions compare is CompareVersions' part; here, which side the system is on.
    EXPECT_TRUE(IsAtLeastOSVersion("10.7"));
    EXPECT_TRUE(IsAtLeastOSVersion("10.15.7"));
    EXPECT_FALSE(IsAtLeastOSVersion("10.15.8"));
}

TEST(GetSystemVersion, ReadsThisSystem) {
    // Whatever this machine runs, the numbers are three plain decimals.
    const std::string version = GetSystemVersion(true);
    EXPECT_EQ(std::count(version.begin(), version.end(), '.'), 2) << version;
    EXPECT_EQ(version.find_first_not_of("0123456789."), std::string::npos) << version;
    EXPECT_TRUE(GetSystemVersion(false).ends_with(" " + version));
}

}  // namespace
