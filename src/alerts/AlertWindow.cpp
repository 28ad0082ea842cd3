#include "alerts/AlertWindow.h"

#include <cmath>
#include <string>
#include <utility>

#include <gtk/gtk.h>
#include <wx/settings.h>

#include "runtime/RuntimeException.h"

namespace alerts {

namespace {

constexpr int64_t kShowSettings = 2;

template <class Control>
Control* Find(const wxWindow& window, const char* name) {
    // A control of another class than asked for is a fault of the layout.
    auto* control = dynamic_cast<Control*>(window.FindWindow(name));
    if (control == nullptr)
        throw TypeMismatchException(std::string("No control named ") + name);
    return control;
}

// "System" is the desktop's interface font, "SmallSystem" a step smaller.
wxFont FontOf(const ControlProperties& properties) {
    wxFont font = wxSystemSettings::GetFont(wxSYS_DEFAULT_GUI_FONT);
    if (std::string(properties.fontName) == "SmallSystem")
        font = font.Smaller();
    if (properties.bold)
        font.MakeBold();
    return font;
}

// GTK lets a label's text be selected, as the alerts' texts may be.
void MakeSelectable(wxStaticText& label) {
    GtkWidget* widget = label.GetHandle();
    if (widget != nullptr && GTK_IS_LABEL(widget)) {
        gtk_label_set_selectable(GTK_LABEL(widget), TRUE);
        gtk_widget_set_can_focus(widget, FALSE);
    }
}

// The height of the text wrapped at width, as the label wraps it: at blanks.
int WrappedHeight(const wxWindow& window, const wxString& text, const wxFont& font, int width) {
    int lineHeight = 0;
    int spaceWidth = 0;
    window.GetTextExtent(" ", &spaceWidth, &lineHeight, nullptr, nullptr, &font);
    int lines = 1;
    int lineWidth = 0;
    for (const wxString& word : wxSplit(text, ' ', '\0')) {
        int wordWidth = 0;
        window.GetTextExtent(word, &wordWidth, nullptr, nullptr, nullptr, &font);
        if (lineWidth > 0 && lineWidth + spaceWidth + wordWidth > width) {
            ++lines;
            lineWidth = wordWidth;
        } else {
            lineWidth += (lineWidth > 0 ? spaceWidth : 0) + wordWidth;
        }
    }
    return lines * lineHeight;
}

// Whether every text of the layout fits its frame with a point of this size.
bool FitsAt(const wxWindow& window, const AlertLayout& layout, double pointSize) {
    constexpr int kButtonPadding = 16;  // the caption's margins inside a button
    for (const ControlProperties& control : layout.controls) {
        if (control.text == nullptr)
            continue;
        const wxFont font = FontOf(control);
        const int width = window.FromDIP(static_cast<int>(std::lround(control.width * pointSize)));
        const int height =
            window.FromDIP(static_cast<int>(std::lround(control.height * pointSize)));
        wxString text = wxString::FromUTF8(control.text);
        text.Replace("^0", wxString::FromUTF8(layout.sampleValue), false);
        if (control.controlClass == ControlClass::kLabel) {
            if (WrappedHeight(window, text, font, width) > height)
                return false;
        } else {
            int textWidth = 0;
            window.GetTextExtent(text, &textWidth, nullptr, nullptr, nullptr, &font);
            if (textWidth + window.FromDIP(kButtonPadding) > width)
                return false;
        }
    }
    return true;
}

// The frames were laid out for narrower fonts than most desktops have. A point is
// taken as large as it must be for every text of both alerts to fit its frame at
// the desktop's own font sizes, and never smaller than a pixel; the two alerts
// share it, so that the second does not come up larger than the first.
double PointSizeFor(const wxWindow& window) {
    constexpr double kStep = 0.05;
    constexpr int kSteps = 20;  // up to twice a pixel
    for (int step = 0; step < kSteps; ++step) {
        const double size = 1.0 + step * kStep;
        if (FitsAt(window, kTrashSizeLayout, size) && FitsAt(window, kTrashUninstallLayout, size))
            return size;
    }
    return 1.0 + kSteps * kStep;
}

}  // namespace

AlertWindow::AlertWindow(const AlertLayout& layout, AlertHost& host)
    : wxDialog(nullptr, wxID_ANY, layout.window.title, wxDefaultPosition, wxDefaultSize,
               wxCAPTION | (layout.window.hasCloseButton ? wxCLOSE_BOX : 0)),
      layout_(layout),
      host_(host),
      pointSize_(PointSizeFor(*this)) {
    ApplyWindowProperties();
    CreateControls();
    Bind(wxEVT_CHAR_HOOK, &AlertWindow::OnCharHook, this);
}

wxPoint AlertWindow::Position(int left, int top) const {
    return FromDIP(wxPoint(static_cast<int>(std::lround(left * pointSize_)),
                           static_cast<int>(std::lround(top * pointSize_))));
}

wxSize AlertWindow::Extent(int width, int height) const {
    return FromDIP(wxSize(static_cast<int>(std::lround(width * pointSize_)),
                          static_cast<int>(std::lround(height * pointSize_))));
}

void AlertWindow::ApplyWindowProperties() {
    const WindowProperties& window = layout_.window;
    SetClientSize(Extent(window.width, window.height));
    SetMinSize(Extent(window.minimumWidth, window.minimumHeight));
    SetMaxSize(Extent(window.maximumWidth, window.maximumHeight));
    SetTitle(window.title);
    // Not resizeable: the frames of the layout are the frames on screen.
    SetSizeHints(GetSize(), GetSize());
    if (window.defaultLocation == 3)
        CentreOnScreen();
}

void AlertWindow::CreateControls() {
    for (const ControlProperties& control : layout_.controls)
        AddControl(control);
}

void AlertWindow::AddControl(const ControlProperties& properties) {
    const wxPoint position = Position(properties.left, properties.top);
    const wxSize size = Extent(properties.width, properties.height);
    switch (properties.controlClass) {
        case ControlClass::kCanvas:
            new AppIconCanvas(this, properties.name, position, size);
            break;
        case ControlClass::kLabel: {
            auto* label = new wxStaticText(this, wxID_ANY, wxString(), position, size,
                                           wxST_NO_AUTORESIZE, properties.name);
            label->SetFont(FontOf(properties));
            label->SetLabelText(wxString::FromUTF8(properties.text));
            label->Wrap(size.GetWidth());
            MakeSelectable(*label);
            break;
        }
        case ControlClass::kPushButton: {
            auto* button = new wxButton(this, wxID_ANY, wxString::FromUTF8(properties.text),
                                        position, size, 0, wxDefaultValidator, properties.name);
            button->SetFont(FontOf(properties));
            if (properties.isDefault)
                button->SetDefault();
            const std::string name = properties.name;
            button->Bind(wxEVT_BUTTON, [this, name, button](wxCommandEvent&) {
                if (name == "btnLaunch")
                    Guarded([&] { btnLaunch_Action(button); });
                if (name == "btnCancel")
                    Guarded([&] { btnCancel_Action(button); });
                if (name == "btnSettings")
                    Guarded([&] { btnSettings_Action(button); });
            });
            break;
        }
    }
}

AppIconCanvas* AlertWindow::cvsAppIcon() const {
    return Find<AppIconCanvas>(*this, "cvsAppIcon");
}
wxStaticText* AlertWindow::lblHeader() const {
    return Find<wxStaticText>(*this, "lblHeader");
}
wxStaticText* AlertWindow::lblDescription() const {
    return Find<wxStaticText>(*this, "lblDescription");
}
wxButton* AlertWindow::btnLaunch() const {
    return Find<wxButton>(*this, "btnLaunch");
}
wxButton* AlertWindow::btnCancel() const {
    return Find<wxButton>(*this, "btnCancel");
}
wxButton* AlertWindow::btnSettings() const {
    return Find<wxButton>(*this, "btnSettings");
}

void AlertWindow::btnLaunch_Action(wxButton* /*button*/) {
    host_.ShowCleanerAppWithCommand(layout_.launchCommand);
    Close();
}

void AlertWindow::btnCancel_Action(wxButton* /*button*/) {
    wxGetTopLevelParent(this)->Close();
}

void AlertWindow::btnSettings_Action(wxButton* /*button*/) {
    host_.ShowCleanerAppWithCommand(kShowSettings);
    Close();
}

template <class Handler>
void AlertWindow::Guarded(Handler handler) {
    try {
        handler();
    } catch (const RuntimeException& error) {
        Unhandled(error);
    } catch (const std::exception& error) {
        // A failure from below the runtime is reported the same way.
        Unhandled(RuntimeException(error.what()));
    }
}

void AlertWindow::Unhandled(const RuntimeException& error) {
    // An exception may not pass through the toolkit's event dispatch: what the
    // handler leaves standing ends the modal loop and goes on from ShowModal.
    try {
        if (host_.Event_UnhandledException(error))
            return;
        unhandled_ = std::make_exception_ptr(error);
    } catch (...) {
        unhandled_ = std::current_exception();
    }
    EndModal(wxID_ABORT);
}

void AlertWindow::RethrowUnhandled() {
    if (unhandled_)
        std::rethrow_exception(std::exchange(unhandled_, nullptr));
}

void AlertWindow::OnCharHook(wxKeyEvent& event) {
    switch (event.GetKeyCode()) {
        case WXK_RETURN:
        case WXK_NUMPAD_ENTER:
            Guarded([this] { btnLaunch_Action(btnLaunch()); });
            break;
        case WXK_ESCAPE:
            Guarded([this] { btnCancel_Action(btnCancel()); });
            break;
        default:
            event.Skip();
    }
}

}  // namespace alerts
