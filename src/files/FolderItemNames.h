// Names and bundles: the extension of a name, whether an item is an
// application, and the information an application bundle carries about itself.
#pragma once

#include <memory>
#include <string>

#include "runtime/Dictionary.h"
#include "runtime/FolderItem.h"
#include "runtime/Object.h"

namespace FolderItemExtension {

// An application's bundle, as far as the agent asks about it.
class NSBundleMBS final : public Object {
  public:
    explicit NSBundleMBS(std::shared_ptr<Dictionary> info) : info_(std::move(info)) {}
    // Its information ("CFBundleName", "CFBundleShortVersionString",
    // "CFBundleIdentifier", ...), or nil when it has none that can be read.
    std::shared_ptr<Dictionary> infoDictionary() const { return info_; }

  private:
    std::shared_ptr<Dictionary> info_;
};

// The last dotted suffix of a name with its dot (".app"), in the name's own case;
// empty without a dot, and for a hidden name with no other dot (".profile").
std::string FileExtension(const std::string& name);

// Whether the system counts the item as an application: a "*.app" bundle with its
// Contents/Info.plist, a desktop entry of Type=Application, or an AppImage. Links
// are not followed. NilObjectException for a nil item.
bool isApplicationMBS(const std::shared_ptr<FolderItem>& item);

// The item as a bundle: a "*.app" bundle with its Info.plist as information, a
// desktop entry with its Name as "CFBundleName" and its desktop-file ID as
// "CFBundleIdentifier"; nil for anything else, AppImages included.
// NilObjectException for a nil item.
std::shared_ptr<NSBundleMBS> BundleZRV(const std::shared_ptr<FolderItem>& item);

// The bundle's identifier; empty whenever there is none, for whatever reason.
// NilObjectException for a nil item.
std::string BundleIDZRV(const std::shared_ptr<FolderItem>& item);

}  // namespace FolderItemExtension
