// An alert built from its layout: the icon, a bold header, a one-line
// description and three buttons. Return presses btnLaunch and Escape btnCancel
// wherever the focus is; the close box sends nothing.
#pragma once

#include <exception>

#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/stattext.h>

#include "alerts/AlertLayout.h"
#include "alerts/Alerts.h"
#include "alerts/AppIconCanvas.h"

namespace alerts {

class AlertWindow : public wxDialog {
  public:
    // Builds the window and its six controls, not yet shown.
    AlertWindow(const AlertLayout& layout, AlertHost& host);

    // Each control is looked up by its name whenever it is asked for.
    AppIconCanvas* cvsAppIcon() const;
    wxStaticText* lblHeader() const;
    wxStaticText* lblDescription() const;
    wxButton* btnLaunch() const;
    wxButton* btnCancel() const;
    wxButton* btnSettings() const;

    void btnLaunch_Action(wxButton* button);
    void btnCancel_Action(wxButton* button);
    void btnSettings_Action(wxButton* button);

    // Carries on what the host's last-resort handler did not end (it failed, or
    // declined), once the modal loop is over; nothing otherwise.
    void RethrowUnhandled();

  private:
    // The points of the layout in this window's pixels.
    wxPoint Position(int left, int top) const;
    wxSize Extent(int width, int height) const;
    void ApplyWindowProperties();
    void CreateControls();
    void AddControl(const ControlProperties& properties);
    // Runs a handler; an exception that escapes it is the host's last resort.
    template <class Handler>
    void Guarded(Handler handler);
    void Unhandled(const RuntimeException& error);
    void OnCharHook(wxKeyEvent& event);

    const AlertLayout& layout_;
    AlertHost& host_;
    // How many device-independent pixels a point of the layout takes.
    double pointSize_ = 1.0;
    std::exception_ptr unhandled_;
};

class wndAlertTrashSize final : public AlertWindow {
  public:
    explicit wndAlertTrashSize(AlertHost& host) : AlertWindow(kTrashSizeLayout, host) {}
};

class wndAlertTrashUninstall final : public AlertWindow {
  public:
    explicit wndAlertTrashUninstall(AlertHost& host) : AlertWindow(kTrashUninstallLayout, host) {}
};

}  // namespace alerts
