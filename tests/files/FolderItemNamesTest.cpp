#include "files/FolderItemNames.h"

#include <gtest/gtest.h>

#include "fakes/TempFolder.h"
#include "runtime/RuntimeException.h"

namespace {

using FolderItemExtension::BundleIDZRV;
using FolderItemExtension::BundleZRV;
using FolderItemExtension::FileExtension;
using FolderItemExtension::isApplicationMBS;

TEST(FileExtension, Names) {
    struct Row {
        const char* name;
        const char* expected;
    };
    const Row rows[] = {
        {"Notes", ""},
        {"Notes.app", ".app"},
        {"Notes.APP", ".APP"},
        {"archive.tar.gz", ".gz"},
        {".profile", ""},
        {".profile.bak", ".bak"},
        {"..profile", ".profile"},
        {"Notes.", "."},
        {".", ""},
        {"..", "."},
        {"", ""},
        {"x.a name with spaces", ".a name with spaces"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(FileExtension(row.name), row.expected) << row.name;
}

TEST(Applications, KindAndBundleInformation) {
    TempFolder temp;
    const auto bundle = [&](const std::string& folder, const std::string& body) {
        temp.WriteFile(folder + "/Contents/Info.plist",
                       "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" +
                           body + "</dict></plist>\n");
    };
    bundle("Viewer.app", "");
    bundle("Plain", "");  // the structure, but not named *.app
    temp.MakeFolder("Hollow.app/Contents");
    temp.WriteFile("Garbled.app/Contents/Info.plist", "<plist><dict><key>x</key>");
    temp.WriteFile("org.example.Editor.desktop",
                   "[Desktop Entry]\nType=Application\nName=Editor\nExec=editor %F\n");
    temp.WriteFile("site.desktop",
                   "[Desktop Entry]\nType=Link\nName=Site\nURL=https://example.org\n");
    temp.WriteFile("broken.desktop", "this is no key file");
    // Hidden= hides an entry from menus; the file still describes an application.
    temp.WriteFile("hidden.desktop", "[Desktop Entry]\nType=Application\nName=Gone\nHidden=true\n");
    temp.WriteFile("nogroup.desktop", "[Desktop Action open]\nType=Application\nExec=x\n");
    const std::string elf(
        "\x7f"
        "ELF\x02\x01\x01\x00",
        8);
    temp.WriteFile("tool.AppImage", elf + "AI\x02 rest");
    temp.WriteFile("old.AppImage", elf + "AI\x01");
    temp.WriteFile("short.AppImage", elf + "AI");
    temp.WriteFile("notes.txt", "AI\x02 at the wrong place");
    temp.MakeLink("link.AppImage", temp / "tool.AppImage");
    temp.MakeLink("Link.app", temp / "Viewer.app");
    struct Row {
        const char* name;
        bool application;
        bool bundle;  // opens as a bundle
        bool info;    // and its information could be read
        const char* id;
    };
    const Row rows[] = {
        {"Viewer.app", true, true, true, ""},
        {"Garbled.app", true, true, false, ""},
        {"Hollow.app", false, false, false, ""},
        {"Plain", false, false, false, ""},
        {"org.example.Editor.desktop", true, true, true, "org.example.Editor"},
        {"hidden.desktop", true, true, true, "hidden"},
        {"site.desktop", false, false, false, ""},
        {"broken.desktop", false, false, false, ""},
        {"nogroup.desktop", false, false, false, ""},
        // An AppImage is an application that carries no information.
        {"tool.AppImage", true, false, false, ""},
        {"old.AppImage", true, false, false, ""},
        {"short.AppImage", false, false, false, ""},
        {"notes.txt", false, false, false, ""},
        {"link.AppImage", false, false, false, ""},
        {"Link.app", false, false, false, ""},
        {"missing.app", false, false, false, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto item = std::make_shared<FolderItem>(temp / row.name);
        EXPECT_EQ(isApplicationMBS(item), row.application);
        const auto opened = BundleZRV(item);
        EXPECT_EQ(opened != nullptr, row.bundle);
        EXPECT_EQ(opened != nullptr && opened->infoDictionary() != nullptr, row.info);
        EXPECT_EQ(BundleIDZRV(item), row.id);
    }
    const auto editor =
        BundleZRV(std::make_shared<FolderItem>(temp / "org.example.Editor.desktop"));
    EXPECT_EQ(VariantToString(editor->infoDictionary()->Value(StringToVariant("CFBundleName"))),
              "Editor");
    EXPECT_THROW(isApplicationMBS(nullptr), NilObjectException);
    EXPECT_THROW(BundleZRV(nullptr), NilObjectException);
    EXPECT_THROW(BundleIDZRV(nullptr), NilObjectException);
}

}  // namespace
