#include "alerts/AppIconCanvas.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <cmath>
#include <optional>

#include <gio/gio.h>
#include <gtk/gtk.h>
#include <wx/dcclient.h>
#include <wx/image.h>

#include "alerts/ExtensionGraphics.h"
#include "runtime/RuntimeException.h"

namespace {

constexpr int kIconPoints = 64;
constexpr const char* kNilItem = "The item is Nil.";

// The folder of the running program.
std::string ProgramFolder() {
    std::array<char, PATH_MAX> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size() - 1);
    if (length <= 0)
        return {};
    const std::string program(path.data(), static_cast<size_t>(length));
    return program.substr(0, program.find_last_of('/'));
}

// A picture of the agent's: beside the program in the build tree, else in the data
// folder of an installed program, found from the program and then where it was
// built to be installed.
std::optional<wxBitmap> OpenFromApp(const std::string& name) {
    if (wxImage::FindHandler(wxBITMAP_TYPE_PNG) == nullptr) {
        wxImage::AddHandler(new wxPNGHandler);  // NOLINT: wx owns its handlers
    }
    const std::string program = ProgramFolder();
    for (const std::string& folder :
         {program + "/resources/", program + "/../share/larkfen-helper/",
          std::string(LARKFEN_DATA_DIR "/")}) {
        const std::string candidate = folder + name;
        if (access(candidate.c_str(), R_OK) != 0)
            continue;
        wxImage image;
        if (image.LoadFile(candidate, wxBITMAP_TYPE_PNG))
            return wxBitmap(image);
    }
    return std::nullopt;
}

// A picture read once: a failed read is tried again at the next call.
const wxBitmap* CachedPicture(std::optional<wxBitmap>& cached, const char* name) {
    if (!cached)
        cached = OpenFromApp(name);
    return cached ? &*cached : nullptr;
}

}  // namespace

const wxBitmap* picAppIcon() {
    static std::optional<wxBitmap> cached;
    return CachedPicture(cached, "picAppIcon.png");
}

const wxBitmap* picAppIcon2x() {
    static std::optional<wxBitmap> cached;
    return CachedPicture(cached, "picAppIcon@2x.png");
}

std::unique_ptr<wxBitmap> IconZRV(const std::shared_ptr<FolderItem>& item, int64_t size) {
    if (item == nullptr)
        throw NilObjectException(kNilItem);
    if (!item->Exists())
        return nullptr;
    GFile* file = g_file_new_for_path(item->NativePath().c_str());
    GFileInfo* info = g_file_query_info(file, G_FILE_ATTRIBUTE_STANDARD_ICON,
                                        G_FILE_QUERY_INFO_NONE, nullptr, nullptr);
    g_object_unref(file);
    if (info == nullptr)
        return nullptr;
    std::unique_ptr<wxBitmap> picture;
    if (GIcon* icon = g_file_info_get_icon(info)) {
        // The theme draws the icon at the size asked for, from a bitmap or a vector file.
        GtkIconInfo* found =
            gtk_icon_theme_lookup_by_gicon(gtk_icon_theme_get_default(), icon,
                                           static_cast<gint>(size), GTK_ICON_LOOKUP_FORCE_SIZE);
        if (found != nullptr) {
            if (GdkPixbuf* pixels = gtk_icon_info_load_icon(found, nullptr)) {
                picture = std::make_unique<wxBitmap>(pixels);  // takes the reference
            }
            g_object_unref(found);
        }
    }
    g_object_unref(info);
    return picture;
}

AppIconCanvas::AppIconCanvas(wxWindow* parent, const wxString& name, const wxPoint& position,
                             const wxSize& size)
    : wxWindow(parent, wxID_ANY, position, size, wxBORDER_NONE | wxTRANSPARENT_WINDOW, name) {
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    Bind(wxEVT_PAINT, &AppIconCanvas::Event_Paint, this);
    Event_Open();
}

void AppIconCanvas::Event_Open() {
    SetSize(FromDIP(wxSize(kIconPoints, kIconPoints)));
}

void AppIconCanvas::Event_Paint(wxPaintEvent& /*event*/) {
    wxPaintDC g(this);
    g.SetBackground(GetParent()->GetBackgroundColour());
    g.Clear();
    const auto scale =
        static_cast<int64_t>(std::trunc(ExtensionGraphics::BackingScaleFactorZRV(GetParent())));
    if (const wxBitmap* pic = picAppIcon()) {
        ExtensionGraphics::DrawPictureZRV(g, pic, picAppIcon2x(), 0, 0, scale);
        return;
    }
    // Without its own pictures the agent shows the icon of its own folder.
    const auto bundle = std::make_shared<FolderItem>(ProgramFolder());
    const auto icon64 = IconZRV(bundle, kIconPoints);
    const auto icon128 = IconZRV(bundle, int64_t{2} * kIconPoints);
    if (icon64 != nullptr) {
        ExtensionGraphics::DrawPictureZRV(g, icon64.get(), icon128.get(), 0, 0, scale);
    }
}
