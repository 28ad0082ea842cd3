#include "platform/PropertyListFile.h"

#include <gtest/gtest.h>
#include <plist/plist.h>

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
    EXPECT_EQ(ParsePropertyList(PropertyListToXml(sample)), sample);
    EXPECT_EQ(ParsePropertyList(ToBinary(sample)), sample);
}

// What is no property list, and what would crash or exhaust the parser, is refused;
// the harmless look-alikes beside them are read.
TEST(PropertyListFile, RefusesWhatIsNoPropertyListOrWouldHarmTheParser) {
    const std::string binary = ToBinary(Sample());
    std::mt19937 random(7);
    std::string noise(4096, '\0');
    for (char& c : noise)
        c = static_cast<char>(random());
    const auto nested = [](const std::string& open, const std::string& close, int depth) {
        std::string text = "<?xml version=\"1.0\"?><plist version=\"1.0\">";
        for (int i = 0; i < depth; ++i)
            text += open;
        for (int i = 0; i < depth; ++i)
            text += close;
        return text + "</plist>";
    };
    // A binary list of one array object whose only element is itself: "bplist00", the
    // object (one reference, to object 0), the offset table (object 0 at 8), the trailer.
    std::string cyclic = std::string("bplist00\xA1\x00\x08", 11) + std::string(32, '\0');
    cyclic[11 + 6] = 1;    // offset size
    cyclic[11 + 7] = 1;    // reference size
    cyclic[11 + 15] = 1;   // one object
    cyclic[11 + 31] = 10;  // where the offset table starts
    // Found by the fuzzer: a text node holding NUL bytes made the library assert.
    const std::string nul = std::string("<?xml version=\"1.0\"?><plist><string>v") +
                            std::string(3, '\0') + "alues</string></plist>";
    struct Row {
        const char* what;
        std::string bytes;
        bool read;
    };
    const Row rows[] = {
        {"empty", "", false},
        {"truncated binary", binary.substr(0, binary.size() - 40), false},
        {"binary magic alone", "bplist00", false},
        {"random bytes behind the binary magic", "bplist00" + noise, false},
        {"text", "just some words", false},
        {"nesting that would exhaust the stack", nested("<array>", "</array>", 100000), false},
        {"shallow nesting, comments that look like more",
         nested("<array><!-- <dict> --><dict/>", "</array>", 100), true},
        {"over 16 MiB", PropertyListToXml(PropertyListValue::String(std::string(17 << 20, 'x'))),
         false},
        {"a binary array that holds itself", cyclic, false},
        {"NUL bytes in a string", nul, true},
    };
    for (const Row& row : rows)
        EXPECT_EQ(ParsePropertyList(row.bytes).has_value(), row.read) << row.what;
    EXPECT_EQ(ParsePropertyList(nul)->Text().size(), 9U);  // read with its length
}

}  // namespace
