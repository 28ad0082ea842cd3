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

TEST(ValueAsRBZRV, KindsBecomeRuntimeValues) {
    struct Row {
        PropertyListValue value;
        int type;
    };
    const Row rows[] = {
        {PropertyListValue::String("x"), kTypeString},
        {PropertyListValue::Real(2.5), kTypeDouble},
        {PropertyListValue::Real(3.0), kTypeDouble},  // the number's own kind decides
        {PropertyListValue::Integer(2), kTypeInt64},
        {PropertyListValue::Boolean(false), kTypeBoolean},
        {PropertyListValue::Dictionary(), kTypeObject},
        {PropertyListValue::Array(), kTypeArray + kTypeObject},
        {PropertyListValue::Array({PropertyListValue::String("s")}), kTypeArray + kTypeObject},
        {PropertyListValue::Date(0), kTypeDateTime},
        {PropertyListValue::Data({}), kTypeObject},
        {PropertyListValue::URL("/tmp"), kTypeObject},
        {PropertyListValue::UUID("68753A44-4D6F-1226-9C60-0050E4C00067"), kTypeString},
    };
    for (size_t i = 0; i < std::size(rows); ++i) {
        const Variant value = ValueAsRBZRV(rows[i].value);
        EXPECT_EQ(VarType(value), rows[i].type) << "row " << i;
        EXPECT_FALSE(value.IsNil()) << "row " << i;
    }
}

TEST(ValueAsRBZRV, NestedContainers) {
    const auto nested = PropertyListValue::Dictionary(
        {{"values",
          PropertyListValue::Array({PropertyListValue::String("a"),
                                    PropertyListValue::Array({PropertyListValue::Integer(1)}),
                                    PropertyListValue::Integer(2)})}});
    const auto dictionary = RuntimeCheckCast<Dictionary>(ValueAsRBZRV(nested));
    ASSERT_NE(dictionary, nullptr);
    const auto items =
        VariantArrayAssignmentWithTypeCheck<Variant>(dictionary->Value(StringToVariant("values")));
    ASSERT_EQ(items->items.size(), 3U);
    EXPECT_EQ(VarType(items->items[0]), kTypeString);
    EXPECT_TRUE(VariantIsArray(items->items[1]));
    EXPECT_EQ(VarType(items->items[2]), kTypeInt64);
    EXPECT_EQ(
        VariantToString(ValueAsRBZRV(PropertyListValue::URL("/tmp/x")).ObjectValue() == nullptr
                            ? Variant()
                            : StringToVariant(RuntimeCheckCast<FolderItem>(
                                                  ValueAsRBZRV(PropertyListValue::URL("/tmp/x")))
                                                  ->NativePath())),
        "/tmp/x");
}

TEST(ToRBDateZRV, GmtFieldsOnTheLocalClock) {
    // 2021-06-01 12:00:00.9 GMT, in seconds from 2001.
    const double seconds = 1622548800.9 - 978307200.0;
    const auto date = ToRBDateZRV(PropertyListValue::Date(seconds));
    ASSERT_NE(date, nullptr);
    EXPECT_EQ(date->SQLDateTime(), "2021-06-01 12:00:00");
    EXPECT_EQ(date->Nanosecond(), 0);
    EXPECT_EQ(date->Operator_Compare(std::make_shared<DateTime>(2021, 6, 1, 12, 0, 0, 0, nullptr)),
              0);
    EXPECT_EQ(ToRBDateZRV(std::nullopt), nullptr);
    const auto late = ToRBDateZRV(PropertyListValue::Date(59.9));
    EXPECT_EQ(late->Second(), 59);
}

TEST(ValueAsCFDateZRV, CarriesTheLocalClockThroughTheStore) {
    // A date whose zone keeps the offset it had on 2001-01-01 comes back as it was.
    const auto winter = std::make_shared<DateTime>(2021, 1, 15, 8, 30, 0, 0, nullptr);
    const auto back = ToRBDateZRV(ValueAsCFDateZRV(winter));
    EXPECT_EQ(back->SQLDateTime(), "2021-01-15 08:30:00");
    EXPECT_THROW(ValueAsCFDateZRV(nullptr), NilObjectException);
}

TEST(ValueAsCFZRV, RuntimeValuesBecomeNative) {
    EXPECT_EQ(ValueAsCFZRV(BooleanToVariant(true)), PropertyListValue::Boolean(true));
    EXPECT_EQ(ValueAsCFZRV(Int32ToVariant(7)), PropertyListValue::Integer(7));
    EXPECT_EQ(ValueAsCFZRV(Int64ToVariant(7)), PropertyListValue::Integer(7));
    EXPECT_EQ(ValueAsCFZRV(SingleToVariant(1.5F)), PropertyListValue::Real(1.5));
    EXPECT_EQ(ValueAsCFZRV(DoubleToVariant(2.5)), PropertyListValue::Real(2.5));
    EXPECT_EQ(ValueAsCFZRV(StringToVariant("s")), PropertyListValue::String("s"));
    EXPECT_EQ(ValueAsCFZRV(Variant(std::make_shared<MemoryBlock>())), PropertyListValue::Data({}));
    EXPECT_EQ(ValueAsCFZRV(Variant(CreateArray<std::string>())), PropertyListValue::Array());
    const auto native = PropertyListValue::String("kept");
    EXPECT_EQ(ValueAsCFZRV(Variant(std::make_shared<NativeValue>(native))), native);
    for (const Variant& none :
         {Variant(), Variant(std::make_shared<FolderItem>("/tmp")), ColorToVariant(Color{1})}) {
        EXPECT_FALSE(ValueAsCFZRV(none).has_value());
    }
}

TEST(ValueAsCFZRV, DictionariesDropWhatHasNoNativeForm) {
    auto dictionary = std::make_shared<Dictionary>();
    dictionary->SetValue(StringToVariant("nil"), Variant());
    dictionary->SetValue(StringToVariant("file"), Variant(std::make_shared<FolderItem>("/tmp")));
    dictionary->SetValue(Int64ToVariant(3), StringToVariant("three"));
    auto strings = CreateArray<Variant>();
    strings->items = {StringToVariant("a"), Variant(), Variant(std::make_shared<FolderItem>("/")),
                      StringToVariant("b")};
    dictionary->SetValue(StringToVariant("values"), Variant(strings));
    const auto native = ValueAsCFZRV(Variant(dictionary));
    ASSERT_TRUE(native.has_value());
    EXPECT_EQ(*native,
              PropertyListValue::Dictionary(
                  {{"3", PropertyListValue::String("three")},
                   {"values", PropertyListValue::Array({PropertyListValue::String("a"),
                                                        PropertyListValue::String("b")})}}));
    // And what the store gives back for it is what went in.
    const auto back = RuntimeCheckCast<Dictionary>(ValueAsRBZRV(*native));
    EXPECT_EQ(VariantToString(back->Value(StringToVariant("3"))), "three");
}

}  // namespace
