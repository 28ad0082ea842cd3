#include "runtime/Variant.h"

#include <gtest/gtest.h>

#include "runtime/DateTime.h"
#include "runtime/Dictionary.h"
#include "runtime/MemoryBlock.h"

namespace {

TEST(Variant, TypeNumbers) {
    struct Row {
        Variant value;
        int type;
    };
    const Row rows[] = {
        {Variant(), kTypeNil},
        {Int32ToVariant(7), kTypeInt32},
        {SingleToVariant(1.5F), kTypeSingle},
        {StringToVariant("x"), kTypeString},
        {BooleanToVariant(false), kTypeBoolean},
        {ColorToVariant(Color{0xFF}), kTypeColor},
        {Variant(std::make_shared<Dictionary>()), kTypeObject},
        {Variant(std::make_shared<MemoryBlock>()), kTypeObject},
        {Variant(std::make_shared<DateTime>(0.0, nullptr)), kTypeDateTime},
        {Variant(CreateArray<std::string>()), kTypeArray + kTypeString},
        {Variant(CreateArray<Variant>()), kTypeArray + kTypeObject},
    };
    for (size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(VarType(rows[i].value), rows[i].type) << "row " << i;
    }
    EXPECT_TRUE(Variant(std::shared_ptr<Dictionary>()).IsNil());
}

TEST(Variant, Conversions) {
    EXPECT_TRUE(VariantToBoolean(BooleanToVariant(true)));
    EXPECT_TRUE(VariantToBoolean(StringToVariant("TRUE")));
    EXPECT_TRUE(VariantToBoolean(Int64ToVariant(2)));
    EXPECT_FALSE(VariantToBoolean(StringToVariant("no")));
    EXPECT_FALSE(VariantToBoolean(Variant()));
    EXPECT_FALSE(VariantToBoolean(Variant(std::make_shared<Dictionary>())));
    EXPECT_DOUBLE_EQ(VariantToDouble(StringToVariant("52428800")), 52428800.0);
    EXPECT_DOUBLE_EQ(VariantToDouble(BooleanToVariant(true)), 1.0);
    EXPECT_EQ(VariantToInt64(DoubleToVariant(-1.9)), -1);
    EXPECT_EQ(VariantToInt64(DoubleToVariant(1e300)), INT64_MAX);
    EXPECT_EQ(VariantToString(Int64ToVariant(3)), "3");
    EXPECT_EQ(VariantToString(BooleanToVariant(false)), "False");
    EXPECT_EQ(VariantToString(Variant()), "");
    EXPECT_THROW(VariantToDouble(Variant(std::make_shared<Dictionary>())), TypeMismatchException);
    EXPECT_THROW(VariantToDateTime(StringToVariant("2020")), TypeMismatchException);
    EXPECT_EQ(VariantToDateTime(Variant()), nullptr);
}

TEST(Variant, NumericAndNilTests) {
    EXPECT_TRUE(RuntimeIsNumeric(Int32ToVariant(0)));
    EXPECT_TRUE(RuntimeIsNumeric(DoubleToVariant(0.5)));
    EXPECT_TRUE(RuntimeIsNumeric(StringToVariant("3700000000")));  // texts are IsNumeric's
    EXPECT_FALSE(RuntimeIsNumeric(BooleanToVariant(true)));
    EXPECT_FALSE(RuntimeIsNumeric(Variant()));
    EXPECT_EQ(VariantCompare(Variant(), Variant()), 0);
    EXPECT_NE(VariantCompare(BooleanToVariant(false), Variant()), 0);
    EXPECT_NE(VariantCompare(Int64ToVariant(0), Variant()), 0);
}

TEST(Variant, TypedArrayViews) {
    auto strings = CreateArray<std::string>();
    strings->items = {"a", "b"};
    const Variant value(strings);
    EXPECT_TRUE(VariantIsArray(value));
    EXPECT_EQ(VariantGetArrayElementType(value), kTypeString);
    EXPECT_EQ(VariantArrayAssignmentWithTypeCheck<std::string>(value), strings);  // same array
    EXPECT_THROW(VariantArrayAssignmentWithTypeCheck<Variant>(value), TypeMismatchException);
    EXPECT_THROW(VariantArrayAssignmentWithTypeCheck<std::string>(StringToVariant("a")),
                 TypeMismatchException);
    EXPECT_FALSE(VariantIsArray(StringToVariant("a")));
    EXPECT_EQ(VariantGetArrayElementType(Variant()), kTypeNil);
    EXPECT_EQ(CreateArray<double>()->LastIndex(), -1);
}

TEST(Variant, CastsAndIsa) {
    const auto dictionary = std::make_shared<Dictionary>();
    EXPECT_TRUE(RuntimeObjectIsa<Dictionary>(Variant(dictionary)));
    EXPECT_FALSE(RuntimeObjectIsa<Dictionary>(Variant()));
    EXPECT_FALSE(RuntimeObjectIsa<MemoryBlock>(Variant(dictionary)));
    EXPECT_EQ(RuntimeCheckCast<Dictionary>(Variant(dictionary)), dictionary);
    EXPECT_EQ(RuntimeCheckCast<Dictionary>(Variant()), nullptr);
    EXPECT_THROW(RuntimeCheckCast<MemoryBlock>(Variant(dictionary)), TypeMismatchException);
    EXPECT_THROW(RuntimeCheckCast<Dictionary>(StringToVariant("x")), TypeMismatchException);
}

TEST(Dictionary, EntriesAndMissingKeys) {
    Dictionary dictionary({{StringToVariant("a"), Int64ToVariant(1)}});
    dictionary.SetValue(StringToVariant("b"), Variant());
    dictionary.SetValue(StringToVariant("a"), Int64ToVariant(2));
    dictionary.SetValue(StringToVariant("A"), Int64ToVariant(3));  // another key: case counts
    EXPECT_EQ(dictionary.KeyCount(), 3);
    EXPECT_EQ(VariantToInt64(dictionary.Value(StringToVariant("a"))), 2);
    EXPECT_TRUE(dictionary.HasKey(StringToVariant("b")));
    EXPECT_TRUE(dictionary.Value(StringToVariant("b")).IsNil());
    EXPECT_THROW(dictionary.Value(StringToVariant("c")), KeyNotFoundException);
    EXPECT_EQ(VariantToString(dictionary.Lookup(StringToVariant("c"), StringToVariant("f"))), "f");
    EXPECT_EQ(VariantToString(dictionary.Key(1)), "b");
    EXPECT_THROW(dictionary.Key(3), KeyNotFoundException);
    dictionary.Remove(StringToVariant("a"));
    EXPECT_EQ(VariantToString(dictionary.Key(0)), "b");
    EXPECT_EQ(VariantToInt64(dictionary.Value(StringToVariant("A"))), 3);
    EXPECT_THROW(dictionary.Remove(StringToVariant("a")), KeyNotFoundException);
}

TEST(Dictionary, KeysByValue) {
    Dictionary dictionary;
    dictionary.SetValue(Int32ToVariant(3), StringToVariant("int"));
    EXPECT_TRUE(dictionary.HasKey(Int64ToVariant(3)));  // integer widths are one key
    EXPECT_FALSE(dictionary.HasKey(StringToVariant("3")));
    const auto object = std::make_shared<MemoryBlock>();
    dictionary.SetValue(Variant(object), BooleanToVariant(true));
    EXPECT_TRUE(dictionary.HasKey(Variant(object)));
    EXPECT_FALSE(dictionary.HasKey(Variant(std::make_shared<MemoryBlock>())));
    const auto clone = dictionary.Clone();
    clone->RemoveAll();
    EXPECT_EQ(dictionary.KeyCount(), 2);
}

}  // namespace
