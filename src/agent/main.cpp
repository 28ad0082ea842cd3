// The process entry: one App, its start-up event, and the exit code it quits with.
#include <exception>
#include <string>

#include "agent/App.h"
#include "alerts/Alerts.h"
#include "platform/LogSink.h"
#include "runtime/DebugLog.h"
#include "runtime/RuntimeException.h"

namespace {

// What the process says of an exception that no handler dealt with, including
// one raised by the handler itself, before it ends with a failure status.
constexpr const char* kUnhandledReport = "An exception of class ";
constexpr const char* kUnhandledReportTail = " was not handled: ";
constexpr int kUnhandledExitCode = 1;

int ReportUnhandled(const char* className, const std::string& message) {
    System::DebugLog(std::string(kUnhandledReport) + className + kUnhandledReportTail + message);
    return kUnhandledExitCode;
}

// Runs the start-up event; an exception that leaves it goes to the application's
// handler, except the two that only end the event.
int RunOpenEvent(App& app) {
    try {
        app.Event_Open();
    } catch (const EndException&) {
    } catch (const ThreadEndException&) {
    } catch (const RuntimeException& error) {
        if (!app.Event_UnhandledException(error))
            return ReportUnhandled(error.ClassName(), error.Message());
    } catch (const std::exception& error) {
        // A failure from below the runtime is reported the same way.
        const RuntimeException wrapped(error.what());
        if (!app.Event_UnhandledException(wrapped))
            return ReportUnhandled(wrapped.ClassName(), wrapped.Message());
    }
    return app.ExitCode();
}

}  // namespace

int main() {
    App app;
    int code = 0;
    try {
        code = RunOpenEvent(app);
    } catch (const RuntimeException& error) {
        // The handler itself failed (no desktop, a crash log that cannot be written).
        code = ReportUnhandled(error.ClassName(), error.Message());
    } catch (const std::exception& error) {
        code = ReportUnhandled("RuntimeException", error.what());
    }
    alerts::ShutDown();
    platform::CurrentLogSink().Flush();
    return code;
}
