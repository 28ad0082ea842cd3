#include "alerts/Alerts.h"

#include <cstdlib>
#include <memory>
#include <string>

#include <wx/app.h>
#include <wx/init.h>
#include <wx/log.h>

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
// A display that refused once is not asked again in this run.
bool refused = false;

bool HasDisplayVariable() {
    const char* x11 = std::getenv("DISPLAY");
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    return (x11 != nullptr && *x11 != '\0') || (wayland != nullptr && *wayland != '\0');
}

// Starts the window system at the first alert; false when there is no display.
bool StartWindowSystem() {
    if (started)
        return true;
    if (refused || !HasDisplayVariable())
        return false;
    wxApp::SetInstance(new AlertApp);  // NOLINT: wx owns the application object
    int argc = 1;
    char name[] = "larkfen-helper";
    char* argv[] = {name, nullptr};
    // The toolkit's own complaint would be a second line for one failure.
    const wxLogNull quiet;
    if (!wxEntryStart(argc, argv)) {
        refused = true;
        return false;
    }
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
    // The agent runs in the background: once the alert is up, it asks the window
    // manager to bring it to the front. How a window opens is the window
    // manager's affair on this desktop; there is no animation to choose.
    AlertWindow* shown = window.get();
    shown->CallAfter([shown] { shown->Raise(); });
    window->ShowModal();
    window->RethrowUnhandled();
}

void ShutDown() {
    if (!started)
        return;
    wxEntryCleanup();
    started = false;
}

}  // namespace alerts
