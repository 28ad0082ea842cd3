#include "platform/ApplicationFinder.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>

#include "fakes/ScopedEnvironment.h"
#include "fakes/TempFolder.h"

namespace {

constexpr const char* kID = "com.ombrastel.larkfen";
constexpr const char* kName = "Larkfen";

std::string Entry(const std::string& name, const std::string& extra = "") {
    return "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=larkfen\n" + extra;
}

// A data home named by XDG_DATA_HOME, and a companion that is not installed at all,
// are what every end-to-end run meets; here the data home is the default one under HOME.
TEST(ApplicationFinder, SearchOrder) {
    struct Row {
        const char* what;
        // Files to write, by path under HOME; "one" and "two" are the two XDG_DATA_DIRS,
        // in that order.
        std::map<std::string, std::string> files;
        std::optional<std::string> found;
    };
    const std::string byID = std::string("/applications/") + kID + ".desktop";
    const std::string home = ".local/share";
    const Row rows[] = {
        {"the data home comes first",
         {{home + byID, Entry(kName)}, {"one" + byID, Entry(kName)}},
         home + byID},
        {"then the data dirs in their order",
         {{"two" + byID, Entry(kName)}, {"one" + byID, Entry(kName)}},
         "one" + byID},
        {"the identifier wins over an earlier entry of the same name",
         {{home + "/applications/other.desktop", Entry(kName)}, {"two" + byID, Entry("Renamed")}},
         "two" + byID},
        {"a hidden entry is absent",
         {{home + byID, Entry(kName, "Hidden=true\n")}, {"two" + byID, Entry(kName)}},
         "two" + byID},
        {"by name, failing the identifier",
         {{"two/applications/larkfen-beta.desktop", Entry(kName)},
          {"one/applications/other.desktop", Entry("Other")}},
         "two/applications/larkfen-beta.desktop"},
        {"of two by name in one folder, the first in name order",
         {{"one/applications/zz.desktop", Entry(kName)},
          {"one/applications/aa.desktop", Entry(kName)},
          {"one/applications/mm.desktop", Entry(kName)}},
         "one/applications/aa.desktop"},
        {"a hidden entry is not found by name either",
         {{"one/applications/larkfen-beta.desktop", Entry(kName, "Hidden=true\n")}},
         std::nullopt},
        {"no desktop entry by its name",
         {{"one" + byID + ".bak", Entry(kName)}, {"one/applications/larkfen", Entry(kName)}},
         std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        TempFolder folder;
        ScopedEnvironment environment;
        environment.Set("HOME", folder.Path());
        environment.Set("XDG_DATA_HOME", std::nullopt);
        environment.Set("XDG_DATA_DIRS", folder / "one" + ":" + folder / "two");
        for (const auto& [path, text] : row.files)
            folder.WriteFile(path, text);
        const auto found = platform::LaunchServicesFindApplicationForInfoMBS("", kID, kName);
        EXPECT_EQ(found, row.found ? std::optional(folder / *row.found) : std::nullopt);
    }
}

}  // namespace
