// Desktop entries come from wherever a user's disk has them: reading one, and
// judging it as an application, must never crash.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "files/FolderItemNames.h"
#include "platform/DesktopEntry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // One file for the whole run, in a folder of its own that goes with the process.
    static char folder[] = "/tmp/larkfen-fuzz-XXXXXX";
    static const std::string path = [] {
        if (mkdtemp(folder) == nullptr)
            __builtin_trap();
        std::atexit([] {
            std::remove((std::string(folder) + "/org.example.Fuzz.desktop").c_str());
            rmdir(folder);
        });
        return std::string(folder) + "/org.example.Fuzz.desktop";
    }();
    FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        return 0;
    std::fwrite(data, 1, size, file);
    std::fclose(file);
    const auto entry = platform::ReadDesktopEntry(path);
    const auto item = std::make_shared<FolderItem>(path);
    const bool application = FolderItemExtension::isApplicationMBS(item);
    if (application && (!entry || entry->type != "Application"))
        __builtin_trap();
    const auto bundle = FolderItemExtension::BundleZRV(item);
    if (application != (bundle != nullptr))
        __builtin_trap();
    if (application && FolderItemExtension::BundleIDZRV(item) != "org.example.Fuzz") {
        __builtin_trap();
    }
    (void)item->DisplayName();
    return 0;
}
