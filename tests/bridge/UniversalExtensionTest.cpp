#include "bridge/UniversalExtension.h"

#include <gtest/gtest.h>

#include "fakes/RecordingLog.h"
#include "runtime/Dictionary.h"

namespace {

using UniversalExtension::ArrayValueZRV;
using UniversalExtension::CloneArrayStringZRV;
using UniversalExtension::SplitIntegerArrayZRV;

TEST(ArrayValueZRV, NonArraysGiveEmpty) {
    for (const Variant& value :
         {Variant(), StringToVariant("a"), Int64ToVariant(1), Variant(CreateArray<double>())}) {
        const auto result = ArrayValueZRV(value);
        ASSERT_NE(result, nullptr);
        EXPECT_TRUE(result->items.empty());
    }
}

TEST(ArrayValueZRV, TypedArraysAreBoxedInOrder) {
    auto strings = CreateArray<std::string>();
    strings->items = {"b", "a"};
    auto ints = CreateArray<int32_t>();
    ints->items = {7, -1};
    auto flags = CreateArray<bool>();
    flags->items = {true};
    const auto fromStrings = ArrayValueZRV(Variant(strings));
    ASSERT_EQ(fromStrings->items.size(), 2U);
    EXPECT_EQ(VarType(fromStrings->items[0]), kTypeString);
    EXPECT_EQ(VariantToString(fromStrings->items[1]), "a");
    const auto fromInts = ArrayValueZRV(Variant(ints));
    ASSERT_EQ(fromInts->items.size(), 2U);
    EXPECT_EQ(VarType(fromInts->items[0]), kTypeInt64);
    EXPECT_EQ(VariantToInt64(fromInts->items[1]), -1);
    EXPECT_EQ(VarType(ArrayValueZRV(Variant(flags))->items.at(0)), kTypeBoolean);
}

TEST(ArrayValueZRV, ObjectArrays) {
    RecordingLog log;
    auto dictionaries = CreateArray<std::shared_ptr<Dictionary>>();
    dictionaries->items = {std::make_shared<Dictionary>()};
    const auto sameObjects = ArrayValueZRV(Variant(dictionaries));
    ASSERT_EQ(sameObjects->items.size(), 1U);
    EXPECT_EQ(sameObjects->items[0].ObjectValue(), dictionaries->items[0]);

    auto inner = CreateArray<std::string>();
    inner->items = {"x"};
    auto mixed = CreateArray<Variant>();
    mixed->items = {StringToVariant("s"), Variant(inner), Int64ToVariant(2)};
    const auto nested = ArrayValueZRV(Variant(mixed));
    ASSERT_EQ(nested->items.size(), 3U);
    const auto converted = VariantArrayAssignmentWithTypeCheck<Variant>(nested->items[1]);
    ASSERT_EQ(converted->items.size(), 1U);  // the nested array, itself converted
    EXPECT_EQ(VarType(converted->items[0]), kTypeString);
    EXPECT_TRUE(log.entries.empty());
}

TEST(ArrayValueZRV, UnknownObjectArraysLogAndRaise) {
    RecordingLog log;
    // An array of arrays of objects is the only kind the last resort can read.
    auto arrays = CreateArray<ArrayRef<Variant>>();
    arrays->items = {CreateArray<Variant>()};
    arrays->items[0]->items = {Int64ToVariant(5)};
    const auto firstOfArrays = ArrayValueZRV(Variant(arrays));
    ASSERT_EQ(firstOfArrays->items.size(), 1U);
    EXPECT_EQ(VariantToInt64(firstOfArrays->items[0]), 5);
    EXPECT_EQ(log.entries, std::vector<std::string>{"Failed to convert variant to correct type."});

    auto strings = CreateArray<std::shared_ptr<Array<std::string>>>();
    strings->items = {CreateArray<std::string>()};
    EXPECT_THROW(ArrayValueZRV(Variant(strings)), TypeMismatchException);
    EXPECT_EQ(log.entries.size(), 2U);
}

TEST(CloneArrayStringZRV, CopiesTheArray) {
    auto original = CreateArray<std::string>();
    original->items = {"a", "b"};
    const auto copy = CloneArrayStringZRV(original);
    EXPECT_NE(copy, original);
    EXPECT_EQ(copy->items, original->items);
    EXPECT_TRUE(CloneArrayStringZRV(CreateArray<std::string>())->items.empty());
    EXPECT_THROW(CloneArrayStringZRV(nullptr), NilObjectException);
}

TEST(SplitIntegerArrayZRV, Fields) {
    struct Row {
        const char* text;
        const char* separator;
        std::vector<int64_t> expected;
    };
    const Row rows[] = {
        {"", ".", {}},       {"1.2.3", ".", {1, 2, 3}}, {"10.x.3", ".", {10, 0, 3}},
        {"1.5", ",", {1}},   {"1.-2", ".", {1, -2}},    {"1.2b3", ".", {1, 2}},
        {"-1.5", ",", {-1}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(SplitIntegerArrayZRV(row.text, row.separator)->items, row.expected) << row.text;
    }
}

}  // namespace
