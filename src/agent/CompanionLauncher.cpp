// Finding the companion and handing it one command by script.
#include "agent/App.h"

#include <array>

#include "platform/ApplicationFinder.h"
#include "platform/ScriptEngine.h"
#include "runtime/DebugLog.h"
#include "runtime/Text.h"

namespace {

constexpr const char* kCreatorCode = "";
constexpr const char* kCompanionBundleID = "com.ombrastel.larkfen";
constexpr const char* kCompanionName = "Larkfen";

constexpr const char* kNotFound = "Failed to launch Larkfen as it could not be found!";
constexpr const char* kUnknownCommand = "Failed to launch Larkfen due to an unknown argument.";
constexpr const char* kScriptError = "AppleScript Error: ";
constexpr const char* kScriptCode = "AppleScript Code:";

// The companion's verbs, by command number from 1.
constexpr std::array<const char*, 5> kVerbs{"SecureEmptyTrash", "ShowSettings",
                                            "UninstallTrashedApps", "ScanScheduled",
                                            "ScanFromSettings"};

}  // namespace

std::shared_ptr<FolderItem> App::GetCleanerApp() {
    const auto path = platform::LaunchServicesFindApplicationForInfoMBS(
        kCreatorCode, kCompanionBundleID, kCompanionName);
    if (!path) {
        System::DebugLog(kNotFound);
        return nullptr;
    }
    return std::make_shared<FolderItem>(*path);
}

void App::ShowCleanerAppWithCommand(int64_t command) {
    const auto companion = TheApp().GetCleanerApp();
    if (companion == nullptr)
        return;
    if (command < 1 || command > static_cast<int64_t>(kVerbs.size())) {
        System::DebugLog(kUnknownCommand);
        return;
    }
    const std::string eol(EndOfLine);
    const std::string source = "tell application \"" + companion->AbsolutePath() + "\"" + eol +
                               "activate" + eol + kVerbs[static_cast<size_t>(command - 1)] + eol +
                               "end tell";
    const auto script = platform::NewScriptEngine();
    script->Compile(source);
    script->Execute();
    const auto& error = script->Error();
    if (!error)
        return;
    if (error->ErrorCodeAvailable && error->Errorcode == 0)
        return;
    if (InStr(0, error->Message, "no error") != 0)
        return;
    System::DebugLog(kScriptError + error->Message);
    System::DebugLog(kScriptCode);
    System::DebugLog(source);
}
