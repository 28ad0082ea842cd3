// The short text of a size that an alert shows, such as "52.4 MB".
#pragma once

#include <cstdint>
#include <string>

namespace FolderItemExtension {

// Unit modes of FormatFileSize.
enum FileSizeUnitMode : int64_t {
    kAutomaticBinary = -1,  // bytes, KiB, MiB, GiB, TiB by powers of 1024
    kAutomaticDecimal = 0,  // bytes, KB, MB, GB, TB by powers of 1000
    kBytes = 1,
    kKB = 2,
    kKiB = 3,
    kMB = 4,
    kMiB = 5,
    kGB = 6,
    kGiB = 7,
    kTB = 8,
    kTiB = 9,
};

// The size in bytes as text in the unit the mode chooses: bytes and kilobytes
// whole, larger units with one decimal, which keepFraction keeps unless it is 0
// and otherwise cuts. -1.0 means an unknown size and gives "--"; any other
// negative size is written as its magnitude. An unknown mode gives the empty text.
std::string FormatFileSize(double bytes, int64_t unitMode, bool keepFraction);

}  // namespace FolderItemExtension
