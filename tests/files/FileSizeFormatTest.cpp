#include "files/FileSizeFormat.h"

#include <gtest/gtest.h>

namespace {

using FolderItemExtension::FormatFileSize;

TEST(FormatFileSize, Sizes) {
    struct Row {
        double bytes;
        int64_t unitMode;
        bool keepFraction;
        const char* expected;
    };
    const Row rows[] = {
        // Automatic decimal units.
        {-1, 0, true, "--"},
        {0, 0, true, "0 bytes"},
        {0.4, 0, true, "0 bytes"},
        {1, 0, true, "1 byte"},
        {1.4, 0, true, "1 bytes"},  // written as 1, but the plural looks at the value
        {999, 0, true, "999 bytes"},
        {1000, 0, true, "1 KB"},
        {1499, 0, true, "1 KB"},
        {-2048, 0, true, "2 KB"},
        {999499, 0, true, "999 KB"},
        {999501, 0, true, "1,000 KB"},
        {1000000, 0, true, "1 MB"},
        {1260000, 0, true, "1.3 MB"},
        {52428800, 0, true, "52.4 MB"},
        {999949999, 0, true, "999.9 MB"},
        {999999999, 0, true, "1,000 MB"},
        {1000000000, 0, true, "1 GB"},
        {2340000000000, 0, true, "2.3 TB"},
        {1000000000000000, 0, true, "1,000 TB"},
        // Automatic binary units.
        {1023, -1, true, "1,023 bytes"},
        {1024, -1, true, "1 KiB"},
        {1048575, -1, true, "1,024 KiB"},
        {1048576, -1, true, "1 MiB"},
        {1572864, -1, true, "1.5 MiB"},
        {1099511627776, -1, true, "1 TiB"},
        {1125899906842624, -1, true, "1,024 TiB"},
        // Fixed units, and modes that are none.
        {1500000, 1, true, "1,500,000 bytes"},
        {1500000, 2, true, "1,500 KB"},
        {1500000, 3, true, "1,465 KiB"},
        {1500000, 4, true, "1.5 MB"},
        {1500000, 5, true, "1.4 MiB"},
        {1500000, 6, true, "0 GB"},
        {1500000, 7, true, "0 GiB"},
        {1500000, 8, true, "0 TB"},
        {1500000, 9, true, "0 TiB"},
        {1500000, 10, true, ""},
        {1500000, -2, true, ""},
        {-1, 10, true, "--"},  // the unknown size comes before the mode
        // The fraction dropped.
        {5, 0, false, "5 bytes"},
        {1940000, 0, false, "1 MB"},
        {1999999, 0, false, "2 MB"},
        {999999999, 0, false, "1,000 MB"},
        {1572864, -1, false, "1 MiB"},
        // A value exactly half-way between two results rounds away from zero, before
        // the fraction is kept or cut.
        {1500, 0, true, "2 KB"},
        {2.5, 0, true, "3 bytes"},
        {0.5, 1, true, "1 bytes"},
        {999.5, 0, true, "1,000 bytes"},
        {1250000, 0, true, "1.3 MB"},
        {1750000, 0, true, "1.8 MB"},
        {1750000, 0, false, "1 MB"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(FormatFileSize(row.bytes, row.unitMode, row.keepFraction), row.expected)
            << row.bytes << " bytes, mode " << row.unitMode << ", keep " << row.keepFraction;
    }
}

}  // namespace
