#include "agent/App.h"

#include <array>
#include <vector>

#include "platform/ProcessInfo.h"
#include "preferences/CorePreferences.h"
#include "runtime/DebugLog.h"
#include "runtime/Text.h"

namespace {

constexpr const char* kCompanionMissing = "Failed to find Larkfen.app. Operation halted.";
constexpr const char* kReinstall = "Fresh reinstall recommended.";
constexpr const char* kUnhandledArguments = "Unhandled or missing required arguments: ";

constexpr const char* kTrashChanged = "-TrashChanged";
constexpr const char* kScheduler = "-Scheduler";
constexpr const char* kQuerySuggestRun = "-QuerySuggestRun";
constexpr int64_t kScanScheduled = 4;

// The application events the agent answers; all others go unanswered.
constexpr std::array<const char*, 2> kHandledEvents{"Open", "UnhandledException"};

App* registered = nullptr;

}  // namespace

App::App() {
    registered = this;
}

App::~App() {
    if (registered == this)
        registered = nullptr;
}

App& TheApp() {
    return *registered;
}

bool App::IsEventImplemented(std::string_view name) {
    for (const char* event : kHandledEvents) {
        if (TextEquals(name, event))
            return true;
    }
    return false;
}

void App::Quit(int code) {
    exitCode_ = code;
}

void App::Event_Open() {
    CorePreferences::Load();
    if (TheApp().GetCleanerApp() == nullptr) {
        System::DebugLog(std::string(kCompanionMissing) + std::string(EndOfLine) + kReinstall);
        Quit(0);
        return;
    }
    // Argument 0, the program's path, takes the same road as the others.
    const std::vector<std::string> arguments = platform::ProcessArguments();
    std::vector<std::string> seen;
    bool handled = false;
    for (const std::string& argument : arguments) {
        seen.push_back(argument);
        if (TextEquals(argument, kTrashChanged)) {
            handled = true;
            if (!Handle_WatchTrash()) {
                Quit(0);
                return;
            }
        } else if (TextEquals(argument, kScheduler)) {
            handled = true;
            ShowCleanerAppWithCommand(kScanScheduled);
        } else if (TextEquals(argument, kQuerySuggestRun)) {
            handled = true;
            Handle_QuerySuggestRun();
        }
    }
    if (!handled) {
        System::DebugLog(std::string(kUnhandledArguments) + std::string(EndOfLine) +
                         Join(seen, EndOfLine));
    }
    Quit(0);
}
