#include "alerts/AlertWindow.h"

#include <gtk/gtk.h>
#include <wx/settings.h>

#include <cmath>
#include <string>

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

// The frames were laid out for narrower fonts than most desktops have. A point is
// taken as large as it must be for every text of the layout to fit its frame at
// the desktop's own font sizes, and never smaller than a pixel.
double PointSizeFor(const wxWindow& window, const AlertLayout& layout) {
    constexpr double kStep = 0.05;
    constexpr double kLargest = 2.0;
    constexpr int kButtonPadding = 16;  // the caption's margins inside a button
    for (double size = 1.0; size < kLargest; size += kStep) {
        bool fits = true;
        for (const ControlProperties& control : layout.controls) {
            if (control.text == nullptr)
                continue;
            const wxFont font = FontOf(control);
            const int width = window.FromDIP(static_cast<int>(std::lround(control.width * size)));
            const int height = window.FromDIP(static_cast<int>(std::lround(control.height * size)));
            wxString text = wxString::FromUTF8(control.text);
            text.Replace("^0", wxString::FromUTF8(layout.sampleValue), false);
            if (control.controlClass == ControlClass::kLabel) {
                fits = fits && WrappedHeight(window, text, font, width) <= height;
            } else {
                int textWidth = 0;
                window.GetTextExtent(text, &textWidth, nullptr, nullptr, nullptr, &font);
                fits = fits && textWidth + window.FromDIP(kButtonPadding) <= width;
            }
        }
        if (fits)
            return size;
    }
    return kLargest;
}

}  // namespace

AlertWindow::AlertWindow(const AlertLayout& layout, AlertHost& host)
    : wxDialog(nullptr, wxID_ANY, layout.window.title, wxDefaultPosition, wxDefaultSize,
               wxCAPTION | (layout.window.hasCloseButton ? wxCLOSE_BOX : 0)),
      layout_(layout),
      host_(host),
      pointSize_(PointSizeFor(*this, layout)) {
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
        host_.Event_UnhandledException(error);
    }
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
