// Drawing the application icon sharp at any scale: the window's backing scale
// factor, and the one of a pair of pictures that fits it.
#pragma once

#include <cstdint>

class wxBitmap;
class wxDC;
class wxWindow;

namespace ExtensionGraphics {

// Pixels to a point of the window's screen; 1.0 on a system older than "10.7",
// and for a nil window or anything that fails on the way.
float BackingScaleFactorZRV(const wxWindow* window);

// Draws pic2x at scale 2, else pic, at its own size divided by the scale, with
// its top left at x, y. Nothing without pic, nor without pic2x at scale 2. A
// scale below 1 draws as scale 1.
void DrawPictureZRV(wxDC& g, const wxBitmap* pic, const wxBitmap* pic2x, int64_t x, int64_t y,
                    int64_t scale);

}  // namespace ExtensionGraphics
