// The runtime's text and number functions. Text is UTF-8; positions and lengths
// count characters (a byte that is no valid UTF-8 counts as one character).
// Searching and comparing ignore case, as the language does; the folding is
// ASCII's, which covers the arguments, extensions, identifiers and timestamp
// letters that the agent compares.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The platform's line end.
inline constexpr std::string_view EndOfLine = "\n";

// Number of characters.
int64_t Length(std::string_view text);

// True when the whole text reads as a decimal number: an optional sign, digits
// with an optional fraction (or a fraction alone), an optional exponent; no blanks.
// False for the empty text.
bool IsNumeric(std::string_view text);
// The number at the start of the text (blanks before it skipped), in the forms
// IsNumeric takes; 0 when there is none.
double Val(std::string_view text);

// A plain decimal with no grouping; a Double in its shortest exact form.
std::string Str(int64_t number);
std::string Str(double number);

// The number written by a mask: "0" a digit always written, "#" a digit written
// when needed, "," grouping of the integer part in threes, "." the decimal point.
// Decimals are the mask's "0" and "#" behind the point; the number is rounded to
// them, a value exactly half-way rounding away from zero. A negative number gets
// a leading "-". Other characters of the mask are written as they stand.
std::string Format(double number, std::string_view mask);

// The fields between the separators; an empty separator splits into characters.
// The empty text gives one empty field.
std::vector<std::string> Split(std::string_view text, std::string_view separator);
// Field n, counted from 1; empty when there are fewer fields.
std::string NthField(std::string_view text, std::string_view separator, int64_t n);
// One more than the number of separators.
int64_t CountFields(std::string_view text, std::string_view separator);

// 1-based position of find in source from start (0 or 1: the beginning); 0 when
// absent or when find is empty.
int64_t InStr(int64_t start, std::string_view source, std::string_view find);
// 0-based position of find in text from start; -1 when absent.
int64_t IndexOf(std::string_view text, std::string_view find, int64_t start = 0);
// 0-based index of the first element equal to value from start, -1 when absent.
// Elements compare exactly: the names it is used on come from one file system,
// where two names that differ in case are two items.
int64_t IndexOf(const std::vector<std::string>& items, std::string_view value, int64_t start = 0);
// The text with the first occurrence of find replaced.
std::string Replace(std::string_view text, std::string_view find, std::string_view with);

// The first or last n characters, or all of a shorter text.
std::string Left(std::string_view text, int64_t n);
std::string Right(std::string_view text, int64_t n);
// n characters from the 0-based position start.
std::string Middle(std::string_view text, int64_t start, int64_t n);

std::string Join(const std::vector<std::string>& items, std::string_view separator);

// 0 when equal ignoring case, else negative or positive.
int RuntimeStringCompare(std::string_view a, std::string_view b);
bool TextEquals(std::string_view a, std::string_view b);
