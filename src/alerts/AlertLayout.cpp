#include "alerts/AlertLayout.h"

namespace alerts {

namespace {

constexpr const char* kLaunch = "Launch Larkfen";
constexpr const char* kCancel = "Cancel";
constexpr const char* kSettings = "Settings...";

constexpr WindowProperties Window(int height) {
    return {500, height, 64, 64, 32000, 32000, 1, "", true, false, false, false, 3};
}

}  // namespace

const AlertLayout kTrashSizeLayout{
    Window(145),
    {{
        {"cvsAppIcon", ControlClass::kCanvas, 24, 15, 64, 64, 0, 0, nullptr, false, nullptr, false,
         false},
        {"lblHeader", ControlClass::kLabel, 104, 15, 372, 34, kLockLeft | kLockTop | kLockRight, 1,
         "The Trash has reached ^0 and can be emptied to recover disk space.", true, "System",
         false, false},
        {"lblDescription", ControlClass::kLabel, 104, 57, 372, 14,
         kLockLeft | kLockTop | kLockRight, 2,
         "Would you like Larkfen to securely erase the contents of the Trash?", false,
         "SmallSystem", false, false},
        {"btnLaunch", ControlClass::kPushButton, 324, 105, 152, 20, kLockRight | kLockBottom, 3,
         kLaunch, false, "System", true, false},
        {"btnCancel", ControlClass::kPushButton, 232, 105, 80, 20, kLockRight | kLockBottom, 4,
         kCancel, false, "System", false, true},
        {"btnSettings", ControlClass::kPushButton, 24, 105, 91, 20, kLockLeft | kLockBottom, 5,
         kSettings, false, "System", false, false},
    }},
    1,
    "1,000.0 MB",
};

const AlertLayout kTrashUninstallLayout{
    Window(156),
    {{
        {"cvsAppIcon", ControlClass::kCanvas, 24, 15, 64, 64, 0, 0, nullptr, false, nullptr, false,
         false},
        {"lblHeader", ControlClass::kLabel, 104, 15, 372, 51, kLockLeft | kLockTop | kLockRight, 1,
         "Uninstalling \"^0\" by dragging it to the Trash will leave preferences, caches, logs, "
         "and other items behind!",
         true, "System", false, false},
        {"lblDescription", ControlClass::kLabel, 104, 74, 372, 14,
         kLockLeft | kLockTop | kLockRight, 2,
         "Would you like to correctly uninstall this app and related files using Larkfen?", false,
         "SmallSystem", false, false},
        {"btnLaunch", ControlClass::kPushButton, 325, 116, 151, 20, kLockTop | kLockRight, 3,
         kLaunch, false, "System", true, false},
        {"btnCancel", ControlClass::kPushButton, 233, 116, 80, 20, kLockTop | kLockRight, 4,
         kCancel, false, "System", false, true},
        {"btnSettings", ControlClass::kPushButton, 24, 116, 91, 20, kLockLeft | kLockTop, 5,
         kSettings, false, "System", false, false},
    }},
    3,
    "An Application.app",
};

}  // namespace alerts
