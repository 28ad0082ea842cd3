#include "alerts/ExtensionGraphics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>

#include <wx/bitmap.h>
#include <wx/dcmemory.h>
#include <wx/frame.h>
#include <wx/image.h>

#include "GuiSession.h"
#include "fakes/FakeSystemInfo.h"

namespace {

constexpr int kCanvas = 200;

// A picture of one colour, so that what was drawn tells which picture it was.
wxBitmap Plain(int size, unsigned char red, unsigned char blue) {
    wxImage image(size, size);
    image.SetRGB(wxRect(0, 0, size, size), red, 0, blue);
    return wxBitmap(image);
}

struct Drawn {
    char colour = '-';  // 'r' the 1x picture, 'b' the 2x picture, '-' nothing
    wxRect area;
};

// Draws on a white canvas of one pixel a point and finds what came out where.
Drawn Draw(const wxBitmap* pic, const wxBitmap* pic2x, int x, int y, int64_t scale) {
    wxBitmap target(kCanvas, kCanvas, 24);
    {
        wxMemoryDC g(target);
        g.SetBackground(*wxWHITE_BRUSH);
        g.Clear();
        ExtensionGraphics::DrawPictureZRV(g, pic, pic2x, x, y, scale);
    }
    const wxImage out = target.ConvertToImage();
    Drawn drawn;
    int left = kCanvas, top = kCanvas, right = -1, bottom = -1;
    for (int row = 0; row < kCanvas; ++row) {
        for (int column = 0; column < kCanvas; ++column) {
            const bool red = out.GetRed(column, row) > 128 && out.GetBlue(column, row) < 128;
            const bool blue = out.GetBlue(column, row) > 128 && out.GetRed(column, row) < 128;
            if (!red && !blue)
                continue;
            drawn.colour = red ? 'r' : 'b';
            left = std::min(left, column);
            top = std::min(top, row);
            right = std::max(right, column);
            bottom = std::max(bottom, row);
        }
    }
    if (right >= 0)
        drawn.area = wxRect(wxPoint(left, top), wxPoint(right, bottom));
    return drawn;
}

TEST(ExtensionGraphics, DrawPictureChoosesThePictureAndItsSizeByScale) {
    REQUIRE_GUI();
    const wxBitmap pic = Plain(64, 255, 0);
    const wxBitmap pic2x = Plain(128, 0, 255);
    struct Row {
        const char* what;
        bool hasPic, hasPic2x;
        int64_t scale;
        int x, y;
        char colour;
        int edge;  // of the square drawn, in points; 0 when nothing is drawn
    };
    const Row rows[] = {
        {"scale 1 draws the 1x picture at its own size", true, true, 1, 0, 0, 'r', 64},
        {"scale 2 draws the 2x picture at half its size", true, true, 2, 0, 0, 'b', 64},
        {"scale 3 shrinks the 1x picture to a third", true, true, 3, 0, 0, 'r', 21},
        {"the picture's top left is at x, y", true, false, 1, 10, 20, 'r', 64},
        {"without the 2x picture scale 1 still draws", true, false, 1, 0, 0, 'r', 64},
        {"without the 2x picture scale 2 draws nothing", true, false, 2, 0, 0, '-', 0},
        {"without the 1x picture nothing is drawn", false, true, 2, 0, 0, '-', 0},
        {"a scale of 0 draws as 1", true, true, 0, 0, 0, 'r', 64},
        {"a negative scale draws as 1", true, true, -2, 0, 0, 'r', 64},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const Drawn drawn = Draw(row.hasPic ? &pic : nullptr, row.hasPic2x ? &pic2x : nullptr,
                                 row.x, row.y, row.scale);
        EXPECT_EQ(drawn.colour, row.colour);
        if (row.edge == 0)
            continue;
        EXPECT_EQ(drawn.area.GetPosition(), wxPoint(row.x, row.y));
        // A third of 64 points covers 21 whole pixels and part of a 22nd.
        EXPECT_GE(drawn.area.GetWidth(), row.edge);
        EXPECT_LE(drawn.area.GetWidth(), row.edge + 1);
        EXPECT_EQ(drawn.area.GetWidth(), drawn.area.GetHeight());
    }
}

TEST(ExtensionGraphics, BackingScaleFactorIsTheWindowsOnNewerSystemsOnly) {
    REQUIRE_GUI();
    auto* frame = new wxFrame(nullptr, wxID_ANY, "scale");  // NOLINT: wx owns its windows
    auto* inner = new wxWindow(frame, wxID_ANY);            // NOLINT: the frame owns it
    frame->Show();
    {
        const FakeSystemInfo system(12, 0, 0, "Debian GNU/Linux");
        EXPECT_EQ(ExtensionGraphics::BackingScaleFactorZRV(inner), gui_session::kScale)
            << "a control answers for its outermost window";
        EXPECT_EQ(ExtensionGraphics::BackingScaleFactorZRV(nullptr), 1.0F);
    }
    {
        const FakeSystemInfo system(10, 6, 8, "Mac OS X");
        EXPECT_EQ(ExtensionGraphics::BackingScaleFactorZRV(inner), 1.0F);
    }
    {
        const FakeSystemInfo system(10, 7, 0, "Mac OS X");
        EXPECT_EQ(ExtensionGraphics::BackingScaleFactorZRV(inner), gui_session::kScale);
    }
    frame->Destroy();
}

}  // namespace

// The leak checker of the sanitizer build reads this: the font library keeps its
// caches until the process ends, which is no leak of this code.
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "leak:libfontconfig.so\n";
}
