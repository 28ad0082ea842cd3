// The Trash job: warn when the Trash grew or stayed large, and offer a proper
// uninstall for an application dragged into it.
#include "agent/App.h"

#include "files/FileSizeFormat.h"
#include "files/FolderItemNames.h"
#include "files/FolderItemSize.h"
#include "preferences/CorePreferences.h"
#include "runtime/Date.h"
#include "runtime/DateTime.h"
#include "runtime/DebugLog.h"
#include "runtime/SpecialFolder.h"
#include "runtime/Text.h"

namespace {

constexpr const char* kTrashNotFound = "Failed to check Trash as folder was not found!";

constexpr const char* kLastWarnSize = "TrashLastWarnSizeSize";
constexpr const char* kLastWarnTime = "TrashLastWarnSizeTime";
constexpr const char* kHistory = "TrashUninstallerHistory";
constexpr const char* kAlertTrashFull = "AlertTrashFull";
constexpr const char* kAlertUninstallApps = "AlertUninstallApps";

// Growth over the last warned size that warns; also the floor of the reminder.
constexpr double kSizeStep = 52428800.0;  // 50 MiB
constexpr int64_t kReminderDays = 5;
constexpr const char* kSkippedExtension = ".ipa";
constexpr const char* kOwnBundleID = "com.ombrastel.larkfenhelper";

// Whether a size warning falls due: growth beyond the step (at most once a
// minute), or a large Trash whose last warning is over five days old.
bool SizeWarningDue(double size, double lastSize, const std::shared_ptr<DateTime>& lastTime) {
    const auto reminderLimit =
        DateTime::Now(nullptr)->SubtractInterval(0, 0, kReminderDays, 0, 0, 0, 0);
    bool warn = size > kSizeStep + lastSize;
    if (lastTime != nullptr) {
        auto minuteAgo = std::make_shared<Date>();
        minuteAgo->Minute -= 1;
        if (lastTime->Operator_Compare(DateTime::Operator_Convert(minuteAgo)) > 0)
            warn = false;
        if (reminderLimit->Operator_Compare(lastTime) > 0 && size > kSizeStep)
            warn = true;
    }
    return warn;
}

// The versioned name under which an application bundle arrives when a second
// version is kept beside the first: "Name (1.2).app".
std::string VersionedName(const FolderItemExtension::NSBundleMBS& bundle) {
    const auto info = bundle.infoDictionary();
    const auto lookup = [&](const char* key) {
        return VariantToString(info->Lookup(StringToVariant(key), StringToVariant("")));
    };
    return lookup("CFBundleName") + " (" + lookup("CFBundleShortVersionString") + ").app";
}

// Whether a child of the Trash is an application that arrived since the last look.
bool IsNewApplication(const std::shared_ptr<FolderItem>& child,
                      const std::vector<std::string>& oldHistory) {
    if (!FolderItemExtension::isApplicationMBS(child))
        return false;
    const std::string name = child->Name();
    if (IndexOf(oldHistory, name) != -1)
        return false;
    if (TextEquals(FolderItemExtension::FileExtension(name), kSkippedExtension))
        return false;
    const auto bundle = FolderItemExtension::BundleZRV(child);
    if (bundle != nullptr && bundle->infoDictionary() != nullptr &&
        TextEquals(name, VersionedName(*bundle))) {
        return false;
    }
    return !TextEquals(FolderItemExtension::BundleIDZRV(child), kOwnBundleID);
}

}  // namespace

bool App::Handle_WatchTrash() {
    const auto trash = SpecialFolder::Trash(nullptr);
    if (trash == nullptr || !trash->Exists()) {
        System::DebugLog(kTrashNotFound);
        return false;
    }
    const double size = FolderItemExtension::SizeZRV(trash);
    const double lastSize = CorePreferences::GetPrefsNumberValue(kLastWarnSize, "");
    const auto lastTime = CorePreferences::GetPrefsDateValue(kLastWarnTime, nullptr, "");
    const bool warn = SizeWarningDue(size, lastSize, lastTime);

    if (warn && CorePreferences::GetPrefsBoolValue(kAlertTrashFull,
                                                   CorePreferences::kCompanionDomain, false)) {
        alerts::OpenAlert(alerts::AlertKind::TrashSize,
                          FolderItemExtension::FormatFileSize(size, 0, true), *this);
    }

    const auto oldHistory = CorePreferences::GetPrefsStrArrayValue(kHistory);
    auto newHistory = CreateArray<std::string>();
    bool newApplication = false;
    std::string nameToShow;
    const int64_t count = trash->Count();
    for (int64_t index = 1; index <= count; ++index) {
        const auto child = trash->TrueItem(index);
        if (child == nullptr || !child->Exists())
            continue;
        newHistory->items.push_back(child->Name());
        if (IsNewApplication(child, oldHistory->items)) {
            nameToShow = child->DisplayName();
            newApplication = true;
        }
    }
    CorePreferences::SetPrefsValue(kHistory, newHistory);

    if (newApplication && CorePreferences::GetPrefsBoolValue(
                              kAlertUninstallApps, CorePreferences::kCompanionDomain, false)) {
        alerts::OpenAlert(alerts::AlertKind::TrashUninstall, nameToShow, *this);
    }
    if (warn) {
        CorePreferences::SetPrefsValue(kLastWarnSize, size, false);
        CorePreferences::SetPrefsValue(kLastWarnTime, DateTime::Now(nullptr));
    }
    return true;
}
