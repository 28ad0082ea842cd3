// The agent's two alerts, as the trash watcher opens them. The windows know
// nothing of the agent: what a button asks for goes back through AlertHost.
#pragma once

#include <cstdint>
#include <string>

class RuntimeException;

namespace alerts {

// What the alerts need of the application that opens them.
class AlertHost {
  public:
    virtual ~AlertHost() = default;
    // Hands one numbered command to the companion (1 erase the Trash, 2 settings,
    // 3 uninstall the trashed applications).
    virtual void ShowCleanerAppWithCommand(int64_t command) = 0;
    // The last-resort report of an exception that escaped a button handler inside
    // the modal loop; it ends the process.
    virtual bool Event_UnhandledException(const RuntimeException& error) = 0;
};

enum class AlertKind { TrashSize, TrashUninstall };

// The steps of opening an alert, in order: bring the agent to the front, build
// the window, set its animation, replace "^0" in the header once by text, and
// show it modally. Returns when the window has closed, whichever way. Without a
// display it logs one line naming the alert and returns as after Cancel.
void OpenAlert(AlertKind kind, const std::string& text, AlertHost& host);

// Ends the window system if an alert started it; nothing otherwise.
void ShutDown();

}  // namespace alerts
