#include "alerts/AlertWindow.h"

#include <gtk/gtk.h>
#include <wx/settings.h>

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

}  // namespace

AlertWindow::AlertWindow(const AlertLayout& layout, AlertHost& host)
    : wxDialog(nullptr, wxID_ANY, layout.window.title, wxDefaultPosition, wxDefaultSize,
               wxCAPTION | (layout.window.hasCloseButton ? wxCLOSE_BOX : 0)),
      layout_(layout),
      host_(host) {
    ApplyWindowProperties();
    CreateControls();
    Bind(wxEVT_CHAR_HOOK, &AlertWindow::OnCharHook, this);
}

void AlertWindow::ApplyWindowProperties() {
    const WindowProperties& window = layout_.window;
    SetClientSize(FromDIP(wxSize(window.width, window.height)));
    SetMinSize(FromDIP(wxSize(window.minimumWidth, window.minimumHeight)));
    SetMaxSize(FromDIP(wxSize(window.maximumWidth, window.maximumHeight)));
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
    const wxPoint position = FromDIP(wxPoint(properties.left, properties.top));
    const wxSize size = FromDIP(wxSize(properties.width, properties.height));
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
