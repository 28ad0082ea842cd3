// The agent's application object: one per process, made at start-up, reached
// through TheApp(). All of a run happens inside Event_Open: preferences, finding
// the companion, the jobs the arguments name, and Quit.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "alerts/Alerts.h"
#include "runtime/FolderItem.h"

class RuntimeException;

class App final : public alerts::AlertHost {
  public:
    // The version data the application carries.
    static constexpr int64_t kMajorVersion = 9;
    static constexpr int64_t kMinorVersion = 0;
    static constexpr int64_t kBugVersion = 2;
    static constexpr int64_t kNonReleaseVersion = 0;
    static constexpr int64_t kStageCode = 3;  // final
    static constexpr const char* kShortVersion = "9.0.2";
    static constexpr const char* kLongVersion = "Larkfen Helper 9.0.2";
    static constexpr const char* kPackageVersion = "9.0.2";

    // Registers the object as the application.
    App();
    ~App() override;
    App(const App&) = delete;
    App& operator=(const App&) = delete;

    // The start-up event: the whole of a run. Ends in Quit on every regular path.
    void Event_Open();
    // The last-resort report: two log entries, the crash log on the desktop, and
    // the end of the process. Raises what writing the crash log raises.
    bool Event_UnhandledException(const RuntimeException& error) override;
    // The Trash job; false only when the Trash could not be found.
    bool Handle_WatchTrash();
    void EventLoadedPrefs() {}
    void PerformAlmostQuit() {}
    // Hands a command (1 to 5) to the companion; failures are logged, not returned.
    void ShowCleanerAppWithCommand(int64_t command) override;
    // The scan-suggestion job.
    void Handle_QuerySuggestRun();
    // The companion's desktop entry, or nil (logged) when it is not installed.
    std::shared_ptr<FolderItem> GetCleanerApp();

    // Whether App itself answers the named application event: true for "Open" and
    // "UnhandledException" (in any capitals), false for every other name.
    static bool IsEventImplemented(std::string_view name);

    // Asks the process to end with the code once Event_Open has returned.
    void Quit(int code);
    int ExitCode() const { return exitCode_; }

  private:
    int exitCode_ = 0;
};

// The registered application object. Only valid while an App exists.
App& TheApp();
