#include "alerts/ExtensionGraphics.h"

#include <wx/bitmap.h>
#include <wx/dc.h>
#include <wx/image.h>
#include <wx/window.h>

#include "files/GlobalMethods.h"

namespace ExtensionGraphics {

float BackingScaleFactorZRV(const wxWindow* window) {
    if (!GlobalMethods::IsAtLeastOSVersion("10.7"))
        return 1.0F;
    try {
        if (window == nullptr)
            return 1.0F;
        const wxWindow* top = wxGetTopLevelParent(const_cast<wxWindow*>(window));
        if (top == nullptr)
            return 1.0F;
        return static_cast<float>(top->GetContentScaleFactor());
    } catch (...) {  // NOLINT(bugprone-empty-catch): any failure here means scale 1
        return 1.0F;
    }
}

void DrawPictureZRV(wxDC& g, const wxBitmap* pic, const wxBitmap* pic2x, int64_t x, int64_t y,
                    int64_t scale) {
    if (pic == nullptr || !pic->IsOk())
        return;
    const wxBitmap* source = scale == 2 ? pic2x : pic;
    if (source == nullptr || !source->IsOk())
        return;
    // A window that answers 0 or less has no sensible scale: draw as 1.
    const double factor = scale >= 1 ? static_cast<double>(scale) : 1.0;
    const wxBitmap scaled(source->ConvertToImage(), -1, factor);
    g.DrawBitmap(scaled, static_cast<wxCoord>(x), static_cast<wxCoord>(y), true);
}

}  // namespace ExtensionGraphics
