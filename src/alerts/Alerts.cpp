#include "alerts/Alerts.h"

#include <wx/app.h>
#include <wx/init.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "alerts/AlertWindow.h"
#include "runtime/DebugLog.h"
#include "runtime/Text.h"

namespace alerts {

namespace {

constexpr const char* kNoDisplay = "Could not show ^0: no display is available.";

class AlertApp final : public wxApp {
  public:
    bool OnInit() override { return true; }
};

bool started = false;

bool HasDisplayVariable() {
    const char* x11 = std::getenv("DISPLAY");
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    return (x11 != nullptr && *x11 != '\0') || (wayland != nullptr && *wayland != '\0');
}

// Starts the window system at the first alert; false when there is no display.
bool StartWindowSystem() {
    if (started)
        return true;
    if (!HasDisplayVariable())
        return false;
    wxApp::SetInstance(new AlertApp);  // NOLINT: wx owns the application object
    int argc = 1;
    char name[] = "larkfen-helper";
    char* argv[] = {name, nullptr};
    if (!wxEntryStart(argc, argv))
        return false;
    wxTheApp->CallOnInit();
    started = true;
    return true;
}

const char* WindowName(AlertKind kind) {
    return kind == AlertKind::TrashSize ? "wndAlertTrashSize" : "wndAlertTrashUninstall";
}

}  // namespace

void OpenAlert(AlertKind kind, const std::string& text, AlertHost& host) {
    if (!StartWindowSystem()) {
        System::DebugLog(Replace(kNoDisplay, "^0", WindowName(kind)));
        return;
    }
    std::unique_ptr<AlertWindow> window;
    if (kind == AlertKind::TrashSize) {
        window = std::make_unique<wndAlertTrashSize>(host);
    } else {
        window = std::make_unique<wndAlertTrashUninstall>(host);
    }
    window->SetName(WindowName(kind));
    wxStaticText* header = window->lblHeader();
    // The label shows its text wrapped at blanks; its own text is unwrapped.
    wxString unwrapped = header->GetLabelText();
    unwrapped.Replace("\n", " ");
    header->SetLabelText(wxString::FromUTF8(Replace(unwrapped.utf8_string(), "^0", text)));
    header->Wrap(header->GetSize().GetWidth());
    window->Raise();
    window->ShowModal();
}

void ShutDown() {
    if (!started)
        return;
    wxEntryCleanup();
    started = false;
}

}  // namespace alerts
