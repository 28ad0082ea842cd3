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

TEST(ArrayValueZRV, ElementsAreBoxedInOrder) {
    auto ints = CreateArray<int32_t>();
    ints->items = {7, -1};
    const auto fromInts = ArrayValueZRV(Variant(ints));
    ASSERT_EQ(fromInts->items.size(), 2U);
    EXPECT_EQ(VarType(fromInts->items[0]), kTypeInt64);  // both widths read as Int64
    EXPECT_EQ(VariantToInt64(fromInts->items[1]), -1);

    RecordingLog log;
    auto dictionaries = CreateArray<std::shared_ptr<Dictionary>>();
    dictionaries->items = {std::make_shared<Dictionary>()};
    const auto sameObjects = ArrayValueZRV(Variant(dictionaries));
    ASSERT_EQ(sameObjects->items.size(), 1U);
    EXPECT_EQ(sameObjects->items[0].ObjectValue(), dictionaries->items[0]);

    // An array inside an array of values is converted too.
    auto inner = CreateArray<std::string>();
    inner->items = {"x"};
    auto mixed = CreateArray<Variant>();
    mixed->items = {StringToVariant("s"), Variant(inner)};
    const auto converted =
        VariantArrayAssignmentWithTypeCheck<Variant>(ArrayValueZRV(Variant(mixed))->items.at(1));
    EXPECT_EQ(VarType(converted->items.at(0)), kTypeString);
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
