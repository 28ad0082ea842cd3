// The application icon at the top left of both alerts, 64 by 64 points.
#pragma once

#include <wx/bitmap.h>
#include <wx/window.h>

#include <memory>

#include "runtime/FolderItem.h"

// The agent's own pictures, read from its resources once per process; nil when
// the file is missing (the next call tries again).
const wxBitmap* picAppIcon();
const wxBitmap* picAppIcon2x();

// The icon the desktop shows for the item, size by size points; nil when the
// item does not exist or has no icon. NilObjectException for a nil item.
std::unique_ptr<wxBitmap> IconZRV(const std::shared_ptr<FolderItem>& item, int64_t size);

class AppIconCanvas final : public wxWindow {
  public:
    AppIconCanvas(wxWindow* parent, const wxString& name, const wxPoint& position,
                  const wxSize& size);

    // The icon is no stop of the keyboard's.
    bool AcceptsFocus() const override { return false; }

  private:
    void Event_Open();
    void Event_Paint(wxPaintEvent& event);
};
