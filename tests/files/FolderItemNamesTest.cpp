#include "files/FolderItemNames.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

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
        {"Game.ipa", ".ipa"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(FileExtension(row.name), row.expected) << row.name;
}

class ApplicationsTest : public testing::Test {
  protected:
    std::string Write(const std::string& relative, const std::string& content) {
        std::string path = folder_.Path() + "/" + relative;
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }
    std::string MakeFolder(const std::string& relative) {
        std::string path = folder_.Path() + "/" + relative;
        std::filesystem::create_directories(path);
        return path;
    }
    std::shared_ptr<FolderItem> Item(const std::string& relative) {
        return std::make_shared<FolderItem>(folder_.Path() + "/" + relative);
    }
    static std::string InfoPlist(const std::string& body) {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + body +
               "</dict></plist>\n";
    }

    TempFolder folder_;
};

TEST_F(ApplicationsTest, WhatCountsAsAnApplication) {
    MakeFolder("Viewer.app/Contents");
    Write("Viewer.app/Contents/Info.plist", InfoPlist(""));
    MakeFolder("Hollow.app/Contents");  // no Info.plist
    MakeFolder("Plain/Contents");
    Write("Plain/Contents/Info.plist", InfoPlist(""));  // structure, but not named *.app
    Write("editor.desktop", "[Desktop Entry]\nType=Application\nName=Editor\nExec=editor\n");
    Write("site.desktop", "[Desktop Entry]\nType=Link\nName=Site\nURL=https://example.org\n");
    Write("broken.desktop", "this is no key file");
    // Hidden= hides an entry from menus; the file still describes an application.
    Write("hidden.desktop", "[Desktop Entry]\nType=Application\nName=Gone\nHidden=true\n");
    Write("nogroup.desktop", "[Desktop Action open]\nType=Application\nExec=x\n");
    Write("tool.AppImage", std::string("\x7f"
                                       "ELF\x02\x01\x01\x00"
                                       "AI\x02 rest",
                                       16));
    Write("old.AppImage", std::string("\x7f"
                                      "ELF\x01\x01\x01\x00"
                                      "AI\x01",
                                      11));
    Write("short.AppImage", std::string("\x7f"
                                        "ELF\x02\x01\x01\x00"
                                        "AI",
                                        10));
    Write("notes.txt", "AI\x02 at the wrong place");
    ASSERT_EQ(symlink((folder_.Path() + "/tool.AppImage").c_str(),
                      (folder_.Path() + "/link.AppImage").c_str()),
              0);
    ASSERT_EQ(
        symlink((folder_.Path() + "/Viewer.app").c_str(), (folder_.Path() + "/Link.app").c_str()),
        0);
    struct Row {
        const char* name;
        bool application;
    };
    const Row rows[] = {
        {"Viewer.app", true},     {"Hollow.app", false},      {"Plain", false},
        {"editor.desktop", true}, {"site.desktop", false},    {"broken.desktop", false},
        {"hidden.desktop", true}, {"nogroup.desktop", false}, {"tool.AppImage", true},
        {"old.AppImage", true},   {"short.AppImage", false},  {"notes.txt", false},
        {"link.AppImage", false}, {"Link.app", false},        {"missing.app", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(isApplicationMBS(Item(row.name)), row.application);
        // Only applications open as bundles, and an AppImage carries no information.
        const auto bundle = BundleZRV(Item(row.name));
        const bool hasInfo = bundle != nullptr && bundle->infoDictionary() != nullptr;
        EXPECT_EQ(hasInfo, row.application && FileExtension(row.name) != ".AppImage");
        if (!row.application) {
            EXPECT_EQ(bundle, nullptr);
        }
    }
    EXPECT_EQ(BundleIDZRV(Item("editor.desktop")), "editor");
    EXPECT_EQ(BundleIDZRV(Item("hidden.desktop")), "hidden");
    EXPECT_EQ(BundleIDZRV(Item("tool.AppImage")), "");  // an application, but no bundle
    EXPECT_THROW(isApplicationMBS(nullptr), NilObjectException);
    EXPECT_THROW(BundleZRV(nullptr), NilObjectException);
    EXPECT_THROW(BundleIDZRV(nullptr), NilObjectException);
}

TEST_F(ApplicationsTest, BundleInformation) {
    MakeFolder("Viewer (2.1).app/Contents");
    Write("Viewer (2.1).app/Contents/Info.plist",
          InfoPlist("<key>CFBundleName</key><string>Viewer</string>"
                    "<key>CFBundleShortVersionString</key><string>2.1</string>"
                    "<key>CFBundleIdentifier</key><string>org.example.viewer</string>"));
    MakeFolder("Anonymous.app/Contents");
    Write("Anonymous.app/Contents/Info.plist",
          InfoPlist("<key>CFBundleName</key><string>A</string>"));
    MakeFolder("Garbled.app/Contents");
    Write("Garbled.app/Contents/Info.plist", "<plist><dict><key>x</key>");
    Write("org.example.Editor.desktop",
          "[Desktop Entry]\nType=Application\nName=Editor\nExec=editor %F\n");

    const auto viewer = BundleZRV(Item("Viewer (2.1).app"));
    ASSERT_NE(viewer, nullptr);
    ASSERT_NE(viewer->infoDictionary(), nullptr);
    EXPECT_EQ(VariantToString(viewer->infoDictionary()->Value(StringToVariant("CFBundleName"))),
              "Viewer");
    EXPECT_EQ(BundleIDZRV(Item("Viewer (2.1).app")), "org.example.viewer");

    EXPECT_EQ(BundleIDZRV(Item("Anonymous.app")), "");  // a bundle without an identifier
    const auto garbled = BundleZRV(Item("Garbled.app"));
    ASSERT_NE(garbled, nullptr);
    EXPECT_EQ(garbled->infoDictionary(), nullptr);
    EXPECT_EQ(BundleIDZRV(Item("Garbled.app")), "");

    const auto editor = BundleZRV(Item("org.example.Editor.desktop"));
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(VariantToString(editor->infoDictionary()->Value(StringToVariant("CFBundleName"))),
              "Editor");
    EXPECT_EQ(BundleIDZRV(Item("org.example.Editor.desktop")), "org.example.Editor");

    MakeFolder("Folder");
    EXPECT_EQ(BundleZRV(Item("Folder")), nullptr);  // no bundle structure: no failure either
    EXPECT_EQ(BundleIDZRV(Item("Folder")), "");
    EXPECT_EQ(BundleIDZRV(Item("nothing here")), "");
}

}  // namespace
