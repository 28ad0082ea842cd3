#include "platform/PropertyListFile.h"

#include <fcntl.h>
#include <plist/plist.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace platform {

namespace {

constexpr std::string_view kBinaryMagic = "bplist00";

struct NodeDeleter {
    void operator()(plist_t node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, NodeDeleter>;

// ---- Checks in front of the parser -------------------------------------------------

bool IsTagName(std::string_view rest, std::string_view name) {
    return rest.substr(0, name.size()) == name &&
           (rest.size() == name.size() || rest[name.size()] == '>' || rest[name.size()] == '/' ||
            rest[name.size()] == ' ' || rest[name.size()] == '\t' || rest[name.size()] == '\n' ||
            rest[name.size()] == '\r');
}

// The nesting of <dict> and <array> stays within the limit. Markup that is no
// element (comments, declarations) is stepped over whole.
bool XmlDepthWithinLimit(std::string_view xml) {
    int depth = 0;
    for (size_t at = xml.find('<'); at != std::string_view::npos; at = xml.find('<', at + 1)) {
        const std::string_view rest = xml.substr(at + 1);
        if (rest.starts_with("!--")) {
            at = xml.find("-->", at);
        } else if (rest.starts_with("![CDATA[")) {
            at = xml.find("]]>", at);
        } else if (rest.starts_with("/")) {
            if (IsTagName(rest.substr(1), "dict") || IsTagName(rest.substr(1), "array"))
                --depth;
            continue;
        } else if (IsTagName(rest, "dict") || IsTagName(rest, "array")) {
            const size_t end = xml.find('>', at);
            if (end != std::string_view::npos && xml[end - 1] == '/')
                continue;  // <dict/>
            if (++depth > kMaxPropertyListDepth)
                return false;
            continue;
        } else {
            continue;
        }
        if (at == std::string_view::npos)
            return true;
    }
    return true;
}

uint64_t ReadBigEndian(std::string_view bytes, size_t at, size_t width) {
    uint64_t value = 0;
    for (size_t i = 0; i < width; ++i)
        value = value << 8 | static_cast<uint8_t>(bytes[at + i]);
    return value;
}

// The objects of a binary list and what each refers to, checked for bounds,
// cycles and depth before the parser follows the references itself.
class BinaryCheck {
  public:
    explicit BinaryCheck(std::string_view bytes) : bytes_(bytes) {}

    bool Passes() {
        if (bytes_.size() < kBinaryMagic.size() + 32)
            return false;
        const size_t trailer = bytes_.size() - 32;
        offsetSize_ = static_cast<uint8_t>(bytes_[trailer + 6]);
        refSize_ = static_cast<uint8_t>(bytes_[trailer + 7]);
        const uint64_t count = ReadBigEndian(bytes_, trailer + 8, 8);
        const uint64_t top = ReadBigEndian(bytes_, trailer + 16, 8);
        tableAt_ = ReadBigEndian(bytes_, trailer + 24, 8);
        if (offsetSize_ < 1 || offsetSize_ > 8 || refSize_ < 1 || refSize_ > 8 || count == 0 ||
            top >= count || tableAt_ >= trailer || count > (trailer - tableAt_) / offsetSize_) {
            return false;
        }
        count_ = count;
        return HeightWithinLimit(top);
    }

  private:
    // Where object `index` begins, or 0 when that is out of bounds.
    uint64_t OffsetOf(uint64_t index) const {
        const uint64_t at = ReadBigEndian(bytes_, tableAt_ + index * offsetSize_, offsetSize_);
        return at >= kBinaryMagic.size() && at < tableAt_ ? at : 0;
    }

    // The count in the marker of the object at `at` and where its contents begin,
    // or false when they run out of bounds.
    bool Counted(uint64_t at, uint64_t& items, uint64_t& next) const {
        items = static_cast<uint8_t>(bytes_[at]) & 0x0F;
        next = at + 1;
        if (items != 0x0F)
            return true;
        if (next >= tableAt_)
            return false;
        const auto lengthMarker = static_cast<uint8_t>(bytes_[next]);
        const size_t width = size_t{1} << (lengthMarker & 0x03);
        if ((lengthMarker >> 4) != 0x1 || next + 1 + width > tableAt_)
            return false;
        items = ReadBigEndian(bytes_, next + 1, width);
        next += 1 + width;
        return true;
    }

    // Whether object `index`, a dictionary's key, is a string holding a NUL
    // character (or runs out of bounds): the library keeps such a key but aborts
    // when asked for it.
    bool KeyHoldsNul(uint64_t index) const {
        const uint64_t at = OffsetOf(index);
        if (at == 0)
            return true;
        const int type = static_cast<uint8_t>(bytes_[at]) >> 4;
        if (type != 0x5 && type != 0x6)
            return false;  // ASCII and UTF-16 are the only texts
        uint64_t items = 0;
        uint64_t next = 0;
        const uint64_t width = type == 0x6 ? 2 : 1;
        if (!Counted(at, items, next) || items > (tableAt_ - next) / width)
            return true;
        for (uint64_t i = 0; i < items; ++i) {
            if (ReadBigEndian(bytes_, next + i * width, width) == 0)
                return true;
        }
        return false;
    }

    // The references of object `index`, or false when they run out of bounds or a
    // dictionary has a key the library cannot give back.
    bool References(uint64_t index, std::vector<uint64_t>& refs) const {
        refs.clear();
        const uint64_t at = OffsetOf(index);
        if (at == 0)
            return false;
        const int type = static_cast<uint8_t>(bytes_[at]) >> 4;
        if (type != 0xA && type != 0xC && type != 0xD)
            return true;  // no references
        uint64_t items = 0;
        uint64_t next = 0;
        if (!Counted(at, items, next))
            return false;
        const uint64_t refCount = type == 0xD ? items * 2 : items;
        if (refCount > (tableAt_ - next) / refSize_)
            return false;
        for (uint64_t i = 0; i < refCount; ++i) {
            const uint64_t ref = ReadBigEndian(bytes_, next + i * refSize_, refSize_);
            if (ref >= count_ || (type == 0xD && i < items && KeyHoldsNul(ref)))
                return false;
            refs.push_back(ref);
        }
        return true;
    }

    // Walks the graph from top without recursion; a reference back to an object
    // on the way is a cycle.
    bool HeightWithinLimit(uint64_t top) {
        enum : uint8_t { kNew, kOnPath, kDone };
        std::vector<uint8_t> state(count_, kNew);
        std::vector<int> height(count_, 0);
        struct Frame {
            uint64_t index;
            std::vector<uint64_t> refs;
            size_t next = 0;
        };
        std::vector<Frame> path;
        path.push_back({top, {}});
        if (!References(top, path.back().refs))
            return false;
        state[top] = kOnPath;
        while (!path.empty()) {
            Frame& frame = path.back();
            if (frame.next == frame.refs.size()) {
                state[frame.index] = kDone;
                const int done = height[frame.index] + 1;
                path.pop_back();
                if (done > kMaxPropertyListDepth)
                    return false;
                if (!path.empty())
                    height[path.back().index] = std::max(height[path.back().index], done);
                continue;
            }
            const uint64_t child = frame.refs[frame.next++];
            if (state[child] == kOnPath)
                return false;
            if (state[child] == kDone) {
                height[frame.index] = std::max(height[frame.index], height[child] + 1);
                continue;
            }
            if (path.size() >= static_cast<size_t>(kMaxPropertyListDepth))
                return false;
            Frame childFrame{child, {}};
            if (!References(child, childFrame.refs))
                return false;
            state[child] = kOnPath;
            path.push_back(std::move(childFrame));
        }
        return true;
    }

    std::string_view bytes_;
    uint8_t offsetSize_ = 0;
    uint8_t refSize_ = 0;
    uint64_t tableAt_ = 0;
    uint64_t count_ = 0;
};

// ---- libplist nodes and values --------------------------------------------------------

std::string TakeText(char* text) {
    std::string value = text != nullptr ? text : "";
    std::free(text);
    return value;
}

PropertyListValue FromNode(plist_t node) {
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            uint8_t flag = 0;
            plist_get_bool_val(node, &flag);
            return PropertyListValue::Boolean(flag != 0);
        }
        case PLIST_UINT: {
            uint64_t number = 0;
            plist_get_uint_val(node, &number);
            return PropertyListValue::Integer(static_cast<int64_t>(number));
        }
        case PLIST_UID: {
            uint64_t number = 0;
            plist_get_uid_val(node, &number);
            return PropertyListValue::Integer(static_cast<int64_t>(number));
        }
        case PLIST_REAL: {
            double number = 0;
            plist_get_real_val(node, &number);
            return PropertyListValue::Real(number);
        }
        case PLIST_STRING: {
            // Read with its length, not through the copying reader, which aborts
            // wherever the length and the text disagree.
            uint64_t length = 0;
            const char* text = plist_get_string_ptr(node, &length);
            return PropertyListValue::String(text != nullptr ? std::string(text, length) : "");
        }
        case PLIST_DATE: {
            int32_t seconds = 0;
            int32_t micros = 0;
            plist_get_date_val(node, &seconds, &micros);
            return PropertyListValue::Date(seconds + micros / 1e6);
        }
        case PLIST_DATA: {
            char* bytes = nullptr;
            uint64_t length = 0;
            plist_get_data_val(node, &bytes, &length);
            std::vector<uint8_t> data(bytes, bytes + length);
            std::free(bytes);
            return PropertyListValue::Data(std::move(data));
        }
        case PLIST_ARRAY: {
            PropertyListValue::ArrayItems items;
            const uint32_t size = plist_array_get_size(node);
            for (uint32_t i = 0; i < size; ++i)
                items.push_back(FromNode(plist_array_get_item(node, i)));
            return PropertyListValue::Array(std::move(items));
        }
        case PLIST_DICT: {
            PropertyListValue::DictionaryItems entries;
            plist_dict_iter iter = nullptr;
            plist_dict_new_iter(node, &iter);
            for (;;) {
                char* key = nullptr;
                plist_t value = nullptr;
                plist_dict_next_item(node, iter, &key, &value);
                if (value == nullptr) {
                    std::free(key);
                    break;
                }
                entries.emplace_back(TakeText(key), FromNode(value));
            }
            std::free(iter);
            return PropertyListValue::Dictionary(std::move(entries));
        }
        default:
            return PropertyListValue::String("");
    }
}

plist_t ToNode(const PropertyListValue& value) {
    using Kind = PropertyListValue::Kind;
    switch (value.kind()) {
        case Kind::kString:
        case Kind::kURL:
        case Kind::kUUID:
            return plist_new_string(value.Text().c_str());
        case Kind::kInteger:
            return plist_new_uint(static_cast<uint64_t>(value.IntegerValue()));
        case Kind::kReal:
            return plist_new_real(value.RealValue());
        case Kind::kBoolean:
            return plist_new_bool(value.BooleanValue() ? 1 : 0);
        case Kind::kDate: {
            // The library keeps dates in 32-bit seconds from 2001.
            const double seconds = std::floor(value.RealValue());
            const double clamped = std::fmin(std::fmax(seconds, -2147483648.0), 2147483647.0);
            return plist_new_date(static_cast<int32_t>(clamped),
                                  static_cast<int32_t>((value.RealValue() - seconds) * 1e6));
        }
        case Kind::kData: {
            const auto& bytes = value.Bytes();
            return plist_new_data(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        }
        case Kind::kArray: {
            plist_t array = plist_new_array();
            for (const auto& item : value.Items())
                plist_array_append_item(array, ToNode(item));
            return array;
        }
        case Kind::kDictionary: {
            plist_t dict = plist_new_dict();
            for (const auto& [key, item] : value.Entries())
                plist_dict_set_item(dict, key.c_str(), ToNode(item));
            return dict;
        }
    }
    return plist_new_string("");
}

}  // namespace

std::optional<PropertyListValue> ParsePropertyList(std::string_view bytes) {
    if (bytes.empty() || bytes.size() > kMaxPropertyListBytes)
        return std::nullopt;
    plist_t root = nullptr;
    if (bytes.starts_with(kBinaryMagic)) {
        if (!BinaryCheck(bytes).Passes())
            return std::nullopt;
        plist_from_bin(bytes.data(), static_cast<uint32_t>(bytes.size()), &root);
    } else {
        // No XML holds a NUL character; the library would keep one inside a text
        // and abort when asked for that text.
        if (bytes.find('\0') != std::string_view::npos || !XmlDepthWithinLimit(bytes))
            return std::nullopt;
        plist_from_xml(bytes.data(), static_cast<uint32_t>(bytes.size()), &root);
    }
    if (root == nullptr)
        return std::nullopt;
    const Node owner(root);
    return FromNode(root);
}

PropertyListRead ReadPropertyList(const std::string& path) {
    PropertyListRead read;
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        read.status = errno == ENOENT ? PropertyListRead::Status::kMissing
                                      : PropertyListRead::Status::kUnreadable;
        read.error = errno;
        return read;
    }
    std::string bytes;
    struct stat status {};
    if (fstat(fd, &status) == 0 && S_ISREG(status.st_mode) &&
        static_cast<uint64_t>(status.st_size) <= kMaxPropertyListBytes) {
        bytes.resize(static_cast<size_t>(status.st_size) + 1);
        size_t got = 0;
        for (ssize_t n = 1; n > 0 && got < bytes.size(); got += static_cast<size_t>(n)) {
            n = ::read(fd, bytes.data() + got, bytes.size() - got);
            if (n < 0) {
                read.status = PropertyListRead::Status::kUnreadable;
                read.error = errno;
                close(fd);
                return read;
            }
            if (n == 0)
                break;
        }
        bytes.resize(got);
    } else if (!S_ISREG(status.st_mode)) {
        close(fd);
        read.status = PropertyListRead::Status::kUnreadable;
        read.error = EISDIR;
        return read;
    } else {
        bytes.assign(kMaxPropertyListBytes + 1, '\0');  // too large: refused below
    }
    close(fd);
    read.value = ParsePropertyList(bytes);
    read.status = read.value ? PropertyListRead::Status::kRead : PropertyListRead::Status::kCorrupt;
    return read;
}

std::optional<PropertyListValue> ReadPropertyListFile(const std::string& path) {
    return ReadPropertyList(path).value;
}

std::string PropertyListToXml(const PropertyListValue& value) {
    const Node root(ToNode(value));
    char* xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(root.get(), &xml, &length);
    std::string text(xml != nullptr ? xml : "", length);
    plist_to_xml_free(xml);
    return text;
}

}  // namespace platform
