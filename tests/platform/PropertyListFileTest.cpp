#include "platform/PropertyListFile.h"

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <random>
#include <string>
#include <vector>

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

// A binary list of the objects given, each referring to others by their place:
// "bplist00", the objects, a table of their offsets, the trailer (object 0 on top).
std::string BinaryList(const std::vector<std::string>& objects) {
    std::string list = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
        table += static_cast<char>(list.size());
        list += object;
    }
    std::string trailer(32, '\0');
    trailer[6] = 1;  // offset size
    trailer[7] = 1;  // reference size
    trailer[15] = static_cast<char>(objects.size());
    trailer[31] = static_cast<char>(list.size());  // where the offset table starts
    return list + table + trailer;
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
    using namespace std::string_literals;
    // Objects of a binary list: a dictionary of one key (object 1) and value
    // (object 2); ASCII texts of three bytes ('S') and of one ('Q'); a UTF-16 text of
    // two units ('b'); true.
    const std::string dict = "\xD1\x01\x02", yes = "\x09";
    // Found by the fuzzer: a text or a key holding a NUL made the library abort.
    const std::string nul = "<?xml version=\"1.0\"?><plist><string>v"s + std::string(3, '\0') +
                            "alues</string></plist>";
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
        {"a binary array that holds itself", BinaryList({"\xA1\x00"s}), false},
        {"NUL bytes in an XML text", nul, false},
        {"a binary key of ASCII holding a NUL", BinaryList({dict, "Sa\0b"s, yes}), false},
        {"a binary key of UTF-16 holding a NUL", BinaryList({dict, "b\0a\0\0"s, yes}), false},
        {"a binary key without one", BinaryList({dict, "Sa-b"s, yes}), true},
        {"a binary text holding a NUL", BinaryList({dict, "Qk"s, "Sv\0w"s}), true},
    };
    for (const Row& row : rows)
        EXPECT_EQ(ParsePropertyList(row.bytes).has_value(), row.read) << row.what;
}

}  // namespace
