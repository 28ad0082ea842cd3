#include "runtime/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace {

char Fold(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Length in bytes of the UTF-8 sequence that starts at text[at]; 1 for a byte
// that starts no valid sequence.
size_t CharWidth(std::string_view text, size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    size_t width = 1;
    if (lead >= 0xF0 && lead <= 0xF4)
        width = 4;
    else if (lead >= 0xE0)
        width = 3;
    else if (lead >= 0xC2 && lead <= 0xDF)
        width = 2;
    if (lead >= 0xF5 || at + width > text.size())
        return 1;
    for (size_t i = 1; i < width; ++i) {
        if ((static_cast<unsigned char>(text[at + i]) & 0xC0) != 0x80)
            return 1;
    }
    return width;
}

// Byte offset of character index n (clamped to the end).
size_t ByteOffset(std::string_view text, int64_t n) {
    size_t at = 0;
    for (int64_t i = 0; i < n && at < text.size(); ++i)
        at += CharWidth(text, at);
    return at;
}

int64_t CharIndex(std::string_view text, size_t byteOffset) {
    int64_t index = 0;
    for (size_t at = 0; at < byteOffset; at += CharWidth(text, at))
        ++index;
    return index;
}

// Byte offset of find in text at or after from, ignoring case; npos when absent.
size_t FindFolded(std::string_view text, std::string_view find, size_t from) {
    if (find.empty() || from > text.size() || find.size() > text.size() - from) {
        return std::string_view::npos;
    }
    const auto equal = [](char a, char b) { return Fold(a) == Fold(b); };
    const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                   find.begin(), find.end(), equal);
    return found == text.end() ? std::string_view::npos : static_cast<size_t>(found - text.begin());
}

// Length of the longest prefix that reads as a number; 0 when none does.
size_t NumberPrefix(std::string_view text) {
    size_t at = 0;
    if (at < text.size() && (text[at] == '+' || text[at] == '-'))
        ++at;
    size_t digits = 0;
    while (at < text.size() && IsDigit(text[at]))
        ++at, ++digits;
    if (at < text.size() && text[at] == '.') {
        size_t fraction = 0;
        while (at + 1 + fraction < text.size() && IsDigit(text[at + 1 + fraction]))
            ++fraction;
        if (digits + fraction > 0)
            at += 1 + fraction, digits += fraction;
    }
    if (digits == 0)
        return 0;
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        size_t exponent = at + 1;
        if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-'))
            ++exponent;
        const size_t firstDigit = exponent;
        while (exponent < text.size() && IsDigit(text[exponent]))
            ++exponent;
        if (exponent > firstDigit)
            at = exponent;
    }
    return at;
}

// Adds one unit in the last place of a string of decimal digits and a point.
void IncrementDecimal(std::string& digits) {
    for (size_t i = digits.size(); i-- > 0;) {
        if (digits[i] == '.')
            continue;
        if (digits[i] != '9') {
            ++digits[i];
            return;
        }
        digits[i] = '0';
    }
    digits.insert(digits.begin(), '1');
}

// |number| with exactly `decimals` decimals, a value half-way rounded away from zero.
std::string FixedMagnitude(double magnitude, int decimals) {
    std::array<char, 400> buffer{};
    // A tie at `decimals` places needs magnitude * 2^(decimals + 1) to be an odd integer.
    const double scaled = std::ldexp(magnitude, decimals + 1);
    const bool tie = scaled < 9007199254740992.0 && scaled == std::floor(scaled) &&
                     std::fmod(scaled, 2.0) == 1.0;
    const int precision = tie ? decimals + 1 : decimals;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude,
                                      std::chars_format::fixed, precision);
    std::string text(buffer.data(), result.ptr);
    if (tie) {
        text.pop_back();  // the exact trailing '5'
        if (!text.empty() && text.back() == '.')
            text.pop_back();
        IncrementDecimal(text);
    }
    return text;
}

struct Mask {
    std::string prefix, suffix;
    int minIntegerDigits = 0;
    bool grouping = false;
    int minDecimals = 0;
    int maxDecimals = 0;
};

Mask ParseMask(std::string_view mask) {
    Mask parsed;
    const size_t first = mask.find_first_of("#0,.");
    const size_t last = mask.find_last_of("#0,.");
    if (first == std::string_view::npos) {
        parsed.prefix = std::string(mask);
        return parsed;
    }
    parsed.prefix = std::string(mask.substr(0, first));
    if (parsed.prefix == "-")
        parsed.prefix.clear();  // the sign's place: written when negative
    parsed.suffix = std::string(mask.substr(last + 1));
    bool inFraction = false;
    for (const char c : mask.substr(first, last - first + 1)) {
        if (c == '.')
            inFraction = true;
        else if (c == ',' && !inFraction)
            parsed.grouping = true;
        else if (c == '0' && inFraction)
            ++parsed.minDecimals, ++parsed.maxDecimals;
        else if (c == '#' && inFraction)
            ++parsed.maxDecimals;
        else if (c == '0')
            ++parsed.minIntegerDigits;
    }
    return parsed;
}

std::string Group(const std::string& integer) {
    std::string grouped;
    for (size_t i = 0; i < integer.size(); ++i) {
        if (i > 0 && (integer.size() - i) % 3 == 0)
            grouped.push_back(',');
        grouped.push_back(integer[i]);
    }
    return grouped;
}

}  // namespace

int64_t Length(std::string_view text) {
    return CharIndex(text, text.size());
}

bool IsNumeric(std::string_view text) {
    return !text.empty() && NumberPrefix(text) == text.size();
}

double Val(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    std::string_view number = text.substr(0, NumberPrefix(text));
    if (number.empty())
        return 0.0;
    const bool negative = number.front() == '-';
    if (number.front() == '+' || number.front() == '-')
        number.remove_prefix(1);
    double value = 0.0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    return negative ? -value : value;
}

std::string Str(int64_t number) {
    return std::to_string(number);
}

std::string Str(double number) {
    std::array<char, 64> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    return std::string(buffer.data(), result.ptr);
}

std::string Format(double number, std::string_view mask) {
    const Mask parsed = ParseMask(mask);
    std::string digits = FixedMagnitude(std::fabs(number), parsed.maxDecimals);
    std::string integer = digits.substr(0, digits.find('.'));
    std::string fraction =
        digits.find('.') == std::string::npos ? std::string() : digits.substr(digits.find('.') + 1);
    while (static_cast<int>(fraction.size()) > parsed.minDecimals && fraction.back() == '0') {
        fraction.pop_back();
    }
    integer.erase(0, std::min(integer.find_first_not_of('0'), integer.size()));
    if (static_cast<int>(integer.size()) < parsed.minIntegerDigits) {
        integer.insert(0, static_cast<size_t>(parsed.minIntegerDigits) - integer.size(), '0');
    }
    const bool zero = integer.find_first_not_of('0') == std::string::npos &&
                      fraction.find_first_not_of('0') == std::string::npos;
    std::string text = parsed.prefix;
    if (number < 0 && !zero)
        text += '-';
    text += parsed.grouping ? Group(integer) : integer;
    if (!fraction.empty())
        text += '.' + fraction;
    return text + parsed.suffix;
}

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
    std::vector<std::string> fields;
    if (separator.empty()) {
        for (size_t at = 0; at < text.size();) {
            const size_t width = CharWidth(text, at);
            fields.emplace_back(text.substr(at, width));
            at += width;
        }
        return fields;
    }
    size_t from = 0;
    for (size_t found = FindFolded(text, separator, 0); found != std::string_view::npos;
         found = FindFolded(text, separator, from)) {
        fields.emplace_back(text.substr(from, found - from));
        from = found + separator.size();
    }
    fields.emplace_back(text.substr(from));
    return fields;
}

std::string NthField(std::string_view text, std::string_view separator, int64_t n) {
    if (n < 1)
        return {};
    if (separator.empty())
        return n == 1 ? std::string(text) : std::string();
    size_t from = 0;
    for (int64_t field = 1; field < n; ++field) {
        const size_t found = FindFolded(text, separator, from);
        if (found == std::string_view::npos)
            return {};
        from = found + separator.size();
    }
    const size_t end = FindFolded(text, separator, from);
    return std::string(text.substr(from, end == std::string_view::npos ? end : end - from));
}

int64_t CountFields(std::string_view text, std::string_view separator) {
    if (separator.empty())
        return 1;
    int64_t count = 1;
    for (size_t found = FindFolded(text, separator, 0); found != std::string_view::npos;
         found = FindFolded(text, separator, found + separator.size())) {
        ++count;
    }
    return count;
}

int64_t InStr(int64_t start, std::string_view source, std::string_view find) {
    const int64_t from = std::max<int64_t>(start, 1) - 1;
    const int64_t found = IndexOf(source, find, from);
    return found < 0 ? 0 : found + 1;
}

int64_t IndexOf(std::string_view text, std::string_view find, int64_t start) {
    if (start < 0)
        return -1;
    const size_t found = FindFolded(text, find, ByteOffset(text, start));
    return found == std::string_view::npos ? -1 : CharIndex(text, found);
}

int64_t IndexOf(const std::vector<std::string>& items, std::string_view value, int64_t start) {
    for (auto i = static_cast<size_t>(std::max<int64_t>(start, 0)); i < items.size(); ++i) {
        if (items[i] == value)
            return static_cast<int64_t>(i);
    }
    return -1;
}

std::string Replace(std::string_view text, std::string_view find, std::string_view with) {
    const size_t found = FindFolded(text, find, 0);
    if (found == std::string_view::npos)
        return std::string(text);
    std::string result(text.substr(0, found));
    result += with;
    result += text.substr(found + find.size());
    return result;
}

std::string Left(std::string_view text, int64_t n) {
    return std::string(text.substr(0, ByteOffset(text, std::max<int64_t>(n, 0))));
}

std::string Right(std::string_view text, int64_t n) {
    const int64_t skip = Length(text) - std::max<int64_t>(n, 0);
    return std::string(text.substr(ByteOffset(text, std::max<int64_t>(skip, 0))));
}

std::string Middle(std::string_view text, int64_t start, int64_t n) {
    const size_t from = ByteOffset(text, std::max<int64_t>(start, 0));
    const std::string_view rest = text.substr(from);
    return std::string(rest.substr(0, ByteOffset(rest, std::max<int64_t>(n, 0))));
}

std::string Join(const std::vector<std::string>& items, std::string_view separator) {
    std::string joined;
    for (size_t i = 0; i < items.size(); ++i) {
        if (i > 0)
            joined += separator;
        joined += items[i];
    }
    return joined;
}

int RuntimeStringCompare(std::string_view a, std::string_view b) {
    const size_t common = std::min(a.size(), b.size());
    for (size_t i = 0; i < common; ++i) {
        const auto ca = static_cast<unsigned char>(Fold(a[i]));
        const auto cb = static_cast<unsigned char>(Fold(b[i]));
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

bool TextEquals(std::string_view a, std::string_view b) {
    return RuntimeStringCompare(a, b) == 0;
}
