// The scan-suggestion job: a user without a schedule who wants reminders is
// offered a scan when neither a suggestion nor a scan came in the last 30 days.
#include "agent/App.h"

#include "preferences/CorePreferences.h"
#include "runtime/Date.h"
#include "runtime/DateTime.h"

namespace {

constexpr const char* kScheduleEnabled = "ScheduleEnabled";
constexpr const char* kAlertRegularScans = "AlertRegularScans";
constexpr const char* kLastSuggested = "LastSuggestedScanDate";
constexpr const char* kLastScan = "LastScanDate";
constexpr int64_t kIntervalDays = 30;
constexpr int64_t kScanFromSettings = 5;

// The present moment to the whole second, as the stored dates hold it.
std::shared_ptr<DateTime> PresentMoment() {
    return DateTime::Operator_Convert(std::make_shared<Date>());
}

}  // namespace

void App::Handle_QuerySuggestRun() {
    using namespace CorePreferences;
    if (GetPrefsBoolValue(kScheduleEnabled, kCompanionDomain, false))
        return;
    if (!GetPrefsBoolValue(kAlertRegularScans, kCompanionDomain, false))
        return;
    const auto lastSuggested = GetPrefsDateValue(kLastSuggested, nullptr, "");
    const auto lastScan = GetPrefsDateValue(kLastScan, nullptr, kCompanionDomain);
    const auto limit = DateTime::Now(nullptr)->SubtractInterval(0, 0, kIntervalDays, 0, 0, 0, 0);
    if (lastSuggested == nullptr) {
        // The first query only starts the clock.
        SetPrefsValue(kLastSuggested, PresentMoment());
        return;
    }
    if (lastSuggested->Operator_Compare(limit) > 0)
        return;
    if (lastScan != nullptr && lastScan->Operator_Compare(limit) >= 0)
        return;
    // Stored first, so that it stands even when the companion cannot be reached.
    SetPrefsValue(kLastSuggested, PresentMoment());
    ShowCleanerAppWithCommand(kScanFromSettings);
}
