// Opens one alert the way the trash watcher does, with a host that writes down
// what it is asked, so that a script can drive the window on an X server.
//
//   alert-driver size|uninstall TEXT [--throw]
//       Prints, one a line: "text NAME: TEXT" for each control as the window
//       shows it when it comes up, "frame NAME: W H" for the window and the two
//       labels (in points of the window), "command N" for each command,
//       "unhandled MESSAGE" for an exception handed to the last resort, and
//       "returned" when OpenAlert is back. --throw makes every command fail.
//   alert-driver close WINDOW-ID
//       Asks the window to close as its close box does (WM_DELETE_WINDOW).
#include <X11/Xlib.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

#include <gtk/gtk.h>
#include <wx/event.h>
#include <wx/eventfilter.h>

#include "alerts/AlertWindow.h"
#include "alerts/Alerts.h"
#include "runtime/RuntimeException.h"

namespace {

void Say(const std::string& line) {
    std::cout << line << std::endl;  // at once: the script reads while the alert is up
}

class RecordingHost final : public alerts::AlertHost {
  public:
    explicit RecordingHost(bool failing) : failing_(failing) {}

    void ShowCleanerAppWithCommand(int64_t command) override {
        Say("command " + std::to_string(command));
        if (failing_)
            throw IOException("The companion did not answer.", -1708);
    }

    bool Event_UnhandledException(const RuntimeException& error) override {
        Say("unhandled " + error.Message());
        return true;
    }

  private:
    bool failing_;
};

// What GTK draws, not what wx was given: markup or a mnemonic would be lost here.
std::string Shown(wxWindow& control) {
    GtkWidget* widget = control.GetHandle();
    const char* text = nullptr;
    if (GTK_IS_LABEL(widget))
        text = gtk_label_get_text(GTK_LABEL(widget));
    else if (GTK_IS_BUTTON(widget))
        text = gtk_button_get_label(GTK_BUTTON(widget));
    std::string shown = text != nullptr ? text : "(none)";
    for (char& c : shown) {
        if (c == '\n')
            c = ' ';  // the label's own line breaks
    }
    return shown;
}

void SayFrame(const char* name, const wxWindow& window, const wxSize& size) {
    const wxSize points = window.ToDIP(size);
    Say(std::string("frame ") + name + ": " + std::to_string(points.GetWidth()) + " " +
        std::to_string(points.GetHeight()));
}

// Reports the alert as it first shows; the controls are asked for by name as
// any caller would.
class ShowReporter final : public wxEventFilter {
  public:
    int FilterEvent(wxEvent& event) override {
        if (event.GetEventType() != wxEVT_SHOW || reported_)
            return Event_Skip;
        auto* window = dynamic_cast<alerts::AlertWindow*>(event.GetEventObject());
        if (window == nullptr || !static_cast<wxShowEvent&>(event).IsShown())
            return Event_Skip;
        reported_ = true;
        Say("text lblHeader: " + Shown(*window->lblHeader()));
        Say("text lblDescription: " + Shown(*window->lblDescription()));
        Say("text btnLaunch: " + Shown(*window->btnLaunch()));
        Say("text btnCancel: " + Shown(*window->btnCancel()));
        Say("text btnSettings: " + Shown(*window->btnSettings()));
        SayFrame("window", *window, window->GetClientSize());
        SayFrame("lblHeader", *window, window->lblHeader()->GetSize());
        SayFrame("lblDescription", *window, window->lblDescription()->GetSize());
        return Event_Skip;
    }

  private:
    bool reported_ = false;
};

int CloseWindow(const char* id) {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr)
        return 2;
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = std::strtoul(id, nullptr, 0);
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    XCloseDisplay(display);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string what = argc > 1 ? argv[1] : "";
    if (what == "close" && argc == 3)
        return CloseWindow(argv[2]);
    if ((what != "size" && what != "uninstall") || argc < 3) {
        std::cerr << "usage: alert-driver size|uninstall TEXT [--throw] | close WINDOW-ID\n";
        return 2;
    }
    RecordingHost host(argc > 3 && std::string(argv[3]) == "--throw");
    ShowReporter reporter;
    wxEvtHandler::AddFilter(&reporter);
    int status = 0;
    try {
        alerts::OpenAlert(
            what == "size" ? alerts::AlertKind::TrashSize : alerts::AlertKind::TrashUninstall,
            argv[2], host);
        Say("returned");
    } catch (const RuntimeException& error) {
        Say("escaped " + error.Message());
        status = 1;
    }
    wxEvtHandler::RemoveFilter(&reporter);
    alerts::ShutDown();
    return status;
}
