#include "files/FolderItemNames.h"

#include <vector>

#include "bridge/CoreFoundationExtension.h"
#include "platform/ApplicationKind.h"
#include "platform/DesktopEntry.h"
#include "platform/PropertyListFile.h"
#include "runtime/RuntimeException.h"
#include "runtime/Text.h"

namespace FolderItemExtension {

namespace {

constexpr const char* kNilItem = "The item is Nil.";
constexpr const char* kBundleName = "CFBundleName";
constexpr const char* kBundleIdentifier = "CFBundleIdentifier";

const std::string& PathOf(const std::shared_ptr<FolderItem>& item) {
    if (item == nullptr)
        throw NilObjectException(kNilItem);
    return item->NativePath();
}

// A bundle's Info.plist as a Dictionary; nil when it cannot be read or holds no
// dictionary.
std::shared_ptr<Dictionary> ReadInfoDictionary(const std::string& bundlePath) {
    const auto value = platform::ReadPropertyListFile(platform::BundleInfoPath(bundlePath));
    if (!value)
        return nullptr;
    return std::dynamic_pointer_cast<Dictionary>(
        CoreFoundationExtension::ValueAsRBZRV(*value).ObjectValue());
}

std::shared_ptr<Dictionary> DesktopEntryInfo(const std::string& path) {
    const auto entry = platform::ReadDesktopEntry(path);
    if (!entry)
        return nullptr;
    auto info = std::make_shared<Dictionary>();
    info->SetValue(StringToVariant(kBundleName), StringToVariant(entry->name));
    info->SetValue(StringToVariant(kBundleIdentifier), StringToVariant(entry->id));
    return info;
}

}  // namespace

std::string FileExtension(const std::string& name) {
    if (IndexOf(name, ".") == -1)
        return {};
    const std::vector<std::string> fields = Split(name, ".");
    if (fields.size() == 2 && fields.front().empty())
        return {};
    return "." + fields.back();
}

bool isApplicationMBS(const std::shared_ptr<FolderItem>& item) {
    return platform::KindOfApplication(PathOf(item)) != platform::ApplicationKind::kNone;
}

std::shared_ptr<NSBundleMBS> BundleZRV(const std::shared_ptr<FolderItem>& item) {
    const std::string& path = PathOf(item);
    switch (platform::KindOfApplication(path)) {
        case platform::ApplicationKind::kBundle:
            return std::make_shared<NSBundleMBS>(ReadInfoDictionary(path));
        case platform::ApplicationKind::kDesktopEntry:
            return std::make_shared<NSBundleMBS>(DesktopEntryInfo(path));
        default:
            return nullptr;
    }
}

std::string BundleIDZRV(const std::shared_ptr<FolderItem>& item) {
    const auto bundle = BundleZRV(item);
    const auto info = bundle != nullptr ? bundle->infoDictionary() : nullptr;
    if (info == nullptr)
        return {};
    const Variant identifier = info->Lookup(StringToVariant(kBundleIdentifier), Variant());
    return VarType(identifier) == kTypeString ? VariantToString(identifier) : std::string();
}

}  // namespace FolderItemExtension
