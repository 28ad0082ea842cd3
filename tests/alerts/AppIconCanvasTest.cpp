#include "alerts/AppIconCanvas.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <array>
#include <climits>
#include <filesystem>
#include <memory>
#include <string>

#include <wx/image.h>

#include "GuiSession.h"
#include "runtime/FolderItem.h"
#include "runtime/RuntimeException.h"

namespace {

namespace fs = std::filesystem;

fs::path ProgramFolder() {
    std::array<char, PATH_MAX> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size() - 1);
    return fs::path(std::string(path.data(), length > 0 ? static_cast<size_t>(length) : 0))
        .parent_path();
}

void WritePicture(const fs::path& file, int size) {
    wxImage image(size, size);
    ASSERT_TRUE(image.SaveFile(file.string(), wxBITMAP_TYPE_PNG));
}

TEST(AppIconCanvas, PictureIsTriedUntilFoundAndThenKept) {
    REQUIRE_GUI();
    if (fs::exists(LARKFEN_DATA_DIR))
        GTEST_SKIP() << "The agent is installed in " LARKFEN_DATA_DIR
                        ", whose pictures would be found.";
    wxImage::AddHandler(new wxPNGHandler);  // NOLINT: wx owns its handlers
    // The test program's resources, beside it as the agent's are beside the agent.
    const fs::path resources = ProgramFolder() / "resources";
    fs::remove_all(resources);
    EXPECT_EQ(picAppIcon2x(), nullptr) << "no file yet";

    fs::create_directories(resources);
    WritePicture(resources / "picAppIcon@2x.png", 128);
    const wxBitmap* found = picAppIcon2x();
    ASSERT_NE(found, nullptr) << "a missing file is asked for again";
    EXPECT_EQ(found->GetWidth(), 128);

    WritePicture(resources / "picAppIcon@2x.png", 32);
    ASSERT_NE(picAppIcon2x(), nullptr);
    EXPECT_EQ(picAppIcon2x()->GetWidth(), 128) << "a picture once read is not read again";
    EXPECT_EQ(picAppIcon(), nullptr) << "each picture has its own file";
    fs::remove_all(resources);
}

TEST(AppIconCanvas, IconOfAnItemAtTheAskedSize) {
    REQUIRE_GUI();
    EXPECT_THROW(IconZRV(nullptr, 64), NilObjectException);
    EXPECT_EQ(IconZRV(std::make_shared<FolderItem>("/no/such/item"), 64), nullptr);

    // A folder has the theme's folder icon, drawn at the size asked for.
    for (const int64_t size : {64, 128}) {
        SCOPED_TRACE(size);
        const auto icon = IconZRV(std::make_shared<FolderItem>(ProgramFolder().string()), size);
        ASSERT_NE(icon, nullptr);
        EXPECT_EQ(icon->GetWidth(), size);
        EXPECT_EQ(icon->GetHeight(), size);
    }
}

}  // namespace
