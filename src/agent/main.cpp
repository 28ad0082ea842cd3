// The process entry: one App, its start-up event, and the exit code it quits with.
#include <exception>

#include "agent/App.h"
#include "alerts/Alerts.h"
#include "platform/LogSink.h"
#include "runtime/RuntimeException.h"

int main() {
    App app;
    try {
        app.Event_Open();
    } catch (const EndException&) {
    } catch (const ThreadEndException&) {
    } catch (const RuntimeException& error) {
        app.Event_UnhandledException(error);
    } catch (const std::exception& error) {
        // A failure from below the runtime is reported the same way.
        app.Event_UnhandledException(RuntimeException(error.what()));
    }
    alerts::ShutDown();
    platform::CurrentLogSink().Flush();
    return app.ExitCode();
}
