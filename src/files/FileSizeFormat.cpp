#include "files/FileSizeFormat.h"

#include <array>
#include <cmath>

#include "runtime/Text.h"

namespace FolderItemExtension {

namespace {

constexpr const char* kWholeMask = "-###,###,###,###,###,###,##0";
constexpr const char* kOneDecimalMask = "-###,###,###,###,###,###,##0.0";
constexpr const char* kUnknownSize = "--";

struct Unit {
    int steps;    // how many times the size is divided by the base
    double base;  // 1000 or 1024
    const char* text;
};

// Units in the order of their size, for each base.
constexpr std::array<Unit, 5> kDecimalUnits{
    {{0, 1000, " byte"}, {1, 1000, " KB"}, {2, 1000, " MB"}, {3, 1000, " GB"}, {4, 1000, " TB"}}};
constexpr std::array<Unit, 5> kBinaryUnits{{{0, 1024, " byte"},
                                            {1, 1024, " KiB"},
                                            {2, 1024, " MiB"},
                                            {3, 1024, " GiB"},
                                            {4, 1024, " TiB"}}};

// The smallest unit whose next step is above the size; the largest unit beyond.
const Unit& AutomaticUnit(const std::array<Unit, 5>& units, double size) {
    double threshold = units[0].base;
    for (size_t i = 0; i + 1 < units.size(); ++i, threshold *= units[0].base) {
        if (threshold > size)
            return units[i];
    }
    return units.back();
}

const Unit* UnitOf(int64_t unitMode, double size) {
    switch (unitMode) {
        case kAutomaticDecimal:
            return &AutomaticUnit(kDecimalUnits, size);
        case kAutomaticBinary:
            return &AutomaticUnit(kBinaryUnits, size);
        case kBytes:
            return &kDecimalUnits[0];
        case kKB:
            return &kDecimalUnits[1];
        case kKiB:
            return &kBinaryUnits[1];
        case kMB:
            return &kDecimalUnits[2];
        case kMiB:
            return &kBinaryUnits[2];
        case kGB:
            return &kDecimalUnits[3];
        case kGiB:
            return &kBinaryUnits[3];
        case kTB:
            return &kDecimalUnits[4];
        case kTiB:
            return &kBinaryUnits[4];
        default:
            return nullptr;
    }
}

}  // namespace

std::string FormatFileSize(double bytes, int64_t unitMode, bool keepFraction) {
    if (bytes == -1.0)
        return kUnknownSize;
    const double size = std::fabs(bytes);
    const Unit* unit = UnitOf(unitMode, size);
    if (unit == nullptr)
        return {};
    double number = size;
    for (int step = 0; step < unit->steps; ++step)
        number /= unit->base;
    std::string text = Format(number, unit->steps < 2 ? kWholeMask : kOneDecimalMask) + unit->text;
    // The plural looks at the value, not at the digits written.
    if (unit->steps == 0 && size != 1.0)
        text += "s";
    if (IndexOf(text, ".") == -1)
        return text;
    if (keepFraction)
        return Replace(text, ".0 ", " ");
    return NthField(text, ".", 1) + " " + NthField(text, " ", 2);
}

}  // namespace FolderItemExtension
