#include "bridge/CoreFoundationExtension.h"

#include <gtest/gtest.h>

#include "runtime/Dictionary.h"
#include "runtime/FolderItem.h"
#include "runtime/MemoryBlock.h"

namespace {

using CoreFoundationExtension::NativeValue;
using CoreFoundationExtension::ToRBDateZRV;
using CoreFoundationExtension::ValueAsCFDateZRV;
using CoreFoundationExtension::ValueAsCFZRV;
using CoreFoundationExtension::ValueAsRBZRV;
using platform::PropertyListValue;

// Strings, booleans, real numbers, dictionaries and string arrays are what the agent
// stores and reads back in every end-to-end run; these are the other kinds.
TEST(ValueAsRBZRV, KindsBecomeRuntimeValues) {
    struct Row {
        PropertyListValue value;
        int type;
    };
    const Row rows[] = {
        {PropertyListValue::Real(3.0), kTypeDouble},  // the number's own kind decides
        {PropertyListValue::Integer(2), kTypeInt64},
        {PropertyListValue::Date(0), kTypeDateTime},
        {PropertyListValue::Data({}), kTypeObject},
        {PropertyListValue::URL("/tmp"), kTypeObject},
        {PropertyListValue::UUID("68753A44-4D6F-1226-9C60-0050E4C00067"), kTypeString},
    };
    for (size_t i = 0; i < std::size(rows); ++i)
        EXPECT_EQ(VarType(ValueAsRBZRV(rows[i].value)), rows[i].type) << "row " << i;
    EXPECT_EQ(
        RuntimeCheckCast<FolderItem>(ValueAsRBZRV(PropertyListValue::URL("/tmp/x")))->NativePath(),
        "/tmp/x");
}

TEST(ValueAsCFZRV, RuntimeValuesBecomeNative) {
    const std::pair<Variant, std::optional<PropertyListValue>> rows[] = {
        {BooleanToVariant(true), PropertyListValue::Boolean(true)},
        {Int32ToVariant(7), PropertyListValue::Integer(7)},
        {Int64ToVariant(7), PropertyListValue::Integer(7)},
        {SingleToVariant(1.5F), PropertyListValue::Real(1.5)},
        {Variant(std::make_shared<MemoryBlock>()), PropertyListValue::Data({})},
        {Variant(std::make_shared<NativeValue>(PropertyListValue::URL("/kept"))),
         PropertyListValue::URL("/kept")},
        // What has no native form.
        {Variant(), std::nullopt},
        {Variant(std::make_shared<FolderItem>("/tmp")), std::nullopt},
        {ColorToVariant(Color{1}), std::nullopt},
    };
    for (size_t i = 0; i < std::size(rows); ++i)
        EXPECT_EQ(ValueAsCFZRV(rows[i].first), rows[i].second) << "row " << i;
}

TEST(ValueAsCFZRV, DictionariesKeepWhatHasANativeFormAndComeBackWhole) {
    auto inner = CreateArray<int64_t>();
    inner->items = {1};
    auto values = CreateArray<Variant>();
    values->items = {StringToVariant("a"), Variant(), Variant(std::make_shared<FolderItem>("/")),
                     Variant(inner), StringToVariant("b")};
    auto dictionary = std::make_shared<Dictionary>();
    dictionary->SetValue(StringToVariant("nil"), Variant());
    dictionary->SetValue(StringToVariant("file"), Variant(std::make_shared<FolderItem>("/tmp")));
    dictionary->SetValue(Int64ToVariant(3), StringToVariant("three"));
    dictionary->SetValue(StringToVariant("values"), Variant(values));
    const auto native = ValueAsCFZRV(Variant(dictionary));
    ASSERT_TRUE(native.has_value());
    EXPECT_EQ(*native,
              PropertyListValue::Dictionary(
                  {{"3", PropertyListValue::String("three")},
                   {"values", PropertyListValue::Array(
                                  {PropertyListValue::String("a"),
                                   PropertyListValue::Array({PropertyListValue::Integer(1)}),
                                   PropertyListValue::String("b")})}}));
    // What the store gives back for it, nested array and all, is what went in.
    EXPECT_EQ(ValueAsCFZRV(ValueAsRBZRV(*native)), native);
}

TEST(ToRBDateZRV, GmtFieldsOnTheLocalClockAndBack) {
    // 2021-06-01 12:00:00.9 GMT, in seconds from 2001.
    const double seconds = 1622548800.9 - 978307200.0;
    const auto date = ToRBDateZRV(PropertyListValue::Date(seconds));
    ASSERT_NE(date, nullptr);
    EXPECT_EQ(date->SQLDateTime(), "2021-06-01 12:00:00");
    EXPECT_EQ(date->Nanosecond(), 0);
    EXPECT_EQ(date->Operator_Compare(std::make_shared<DateTime>(2021, 6, 1, 12, 0, 0, 0, nullptr)),
              0);
    EXPECT_EQ(ToRBDateZRV(PropertyListValue::Date(59.9))->Second(), 59);
    EXPECT_EQ(ToRBDateZRV(std::nullopt), nullptr);
    // A date whose zone keeps the offset it had on 2001-01-01 comes back as it was.
    const auto winter = std::make_shared<DateTime>(2021, 1, 15, 8, 30, 0, 0, nullptr);
    EXPECT_EQ(ToRBDateZRV(ValueAsCFDateZRV(winter))->SQLDateTime(), "2021-01-15 08:30:00");
    EXPECT_THROW(ValueAsCFDateZRV(nullptr), NilObjectException);
}

}  // namespace
