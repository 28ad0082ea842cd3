#include "platform/PropertyListFile.h"

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <cstdlib>
#include <random>
#include <string>

namespace {

using platform::ParsePropertyList;
using platform::PropertyListToXml;
using platform::PropertyListValue;

PropertyListValue Sample() {
    PropertyListValue inner = PropertyListValue::Array(
        {PropertyListValue::String("Notes.app"), PropertyListValue::String("ü ✓ <&>")});
    return PropertyListValue::Dictionary({
        {"TrashUninstallerHistory", PropertyListValue::Dictionary({{"values", inner}})},
        {"TrashLastWarnSizeSize", PropertyListValue::Real(62914560.5)},
        {"ProxyPort", PropertyListValue::Integer(80)},
        {"Negative", PropertyListValue::Integer(-5)},
        {"AlertTrashFull", PropertyListValue::Boolean(true)},
        {"When", PropertyListValue::Date(631152000)},  // XML dates hold whole seconds
        {"Blob", PropertyListValue::Data({0, 1, 2, 255})},
        {"Empty", PropertyListValue::Array()},
    });
}

std::string ToBinary(const PropertyListValue& value) {
    plist_t root = nullptr;
    const std::string xml = PropertyListToXml(value);
    plist_from_xml(xml.data(), static_cast<uint32_t>(xml.size()), &root);
    char* bytes = nullptr;
    uint32_t length = 0;
    plist_to_bin(root, &bytes, &length);
    std::string binary(bytes, length);
    plist_to_bin_free(bytes);
    plist_free(root);
    return binary;
}

TEST(PropertyListFile, XmlAndBinaryRoundTrip) {
    const PropertyListValue sample = Sample();
    const auto fromXml = ParsePropertyList(PropertyListToXml(sample));
    ASSERT_TRUE(fromXml.has_value());
    EXPECT_EQ(*fromXml, sample);
    const auto fromBinary = ParsePropertyList(ToBinary(sample));
    ASSERT_TRUE(fromBinary.has_value());
    EXPECT_EQ(*fromBinary, sample);
}

TEST(PropertyListFile, RefusesWhatIsNoPropertyList) {
    const std::string xml = PropertyListToXml(Sample());
    const std::string binary = ToBinary(Sample());
    std::mt19937 random(7);
    std::string noise(4096, '\0');
    for (char& c : noise)
        c = static_cast<char>(random());
    struct Row {
        const char* what;
        std::string bytes;
    };
    const Row rows[] = {
        {"empty", ""},
        {"truncated xml", xml.substr(0, xml.size() / 2)},
        {"truncated binary", binary.substr(0, binary.size() - 40)},
        {"binary magic alone", "bplist00"},
        {"random bytes", noise},
        {"random bytes behind the binary magic", "bplist00" + noise},
        {"text", "just some words"},
    };
    for (const Row& row : rows)
        EXPECT_FALSE(ParsePropertyList(row.bytes).has_value()) << row.what;
}

TEST(PropertyListFile, RefusesDeepAndLargeInputBeforeParsing) {
    std::string deep = "<?xml version=\"1.0\"?><plist version=\"1.0\">";
    for (int i = 0; i < 100000; ++i)
        deep += "<array>";
    for (int i = 0; i < 100000; ++i)
        deep += "</array>";
    deep += "</plist>";
    EXPECT_FALSE(ParsePropertyList(deep).has_value());  // would exhaust the parser's stack

    std::string shallow = "<?xml version=\"1.0\"?><plist version=\"1.0\">";
    for (int i = 0; i < 100; ++i)
        shallow += "<array><!-- <dict> --><dict/>";
    for (int i = 0; i < 100; ++i)
        shallow += "</array>";
    shallow += "</plist>";
    EXPECT_TRUE(ParsePropertyList(shallow).has_value());

    std::string large = PropertyListToXml(PropertyListValue::String(std::string(17 << 20, 'x')));
    EXPECT_FALSE(ParsePropertyList(large).has_value());
}

TEST(PropertyListFile, StringsWithNulBytesDoNotAbort) {
    // Found by the fuzzer: a text node holding NUL bytes made the library assert.
    const std::string bytes = std::string("<?xml version=\"1.0\"?><plist><string>v") +
                              std::string(3, '\0') + "alues</string></plist>";
    const auto value = ParsePropertyList(bytes);
    ASSERT_TRUE(value.has_value());
    EXPECT_EQ(value->Text().size(), 9U);
}

TEST(PropertyListFile, RefusesBinaryCycles) {
    // One array object whose only element is itself.
    std::string cyclic = "bplist00";
    cyclic += static_cast<char>(0xA1);  // array of one reference
    cyclic += static_cast<char>(0x00);  // ... to object 0
    const size_t table = cyclic.size();
    cyclic += static_cast<char>(0x08);  // object 0 at offset 8
    std::string trailer(32, '\0');
    trailer[6] = 1;   // offset size
    trailer[7] = 1;   // reference size
    trailer[15] = 1;  // one object
    trailer[31] = static_cast<char>(table);
    EXPECT_FALSE(ParsePropertyList(cyclic + trailer).has_value());
}

}  // namespace
