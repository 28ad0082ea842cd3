// Every command the launcher knows reaches a real companion by either road:
// desktop actions, and the session bus. Commands 1 to 3 come only from the
// alerts' buttons, so the launcher is driven here in-process, with the system's
// own script engine, instead of through the command line.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "agent/App.h"
#include "e2e/Sandbox.h"
#include "fakes/ScopedEnvironment.h"

namespace {

TEST(CompanionDelivery, EveryCommandArrivesByEitherRoad) {
    const std::vector<std::string> verbs{"SecureEmptyTrash", "ShowSettings", "UninstallTrashedApps",
                                         "ScanScheduled", "ScanFromSettings"};
    for (const bool overTheBus : {false, true}) {
        SCOPED_TRACE(overTheBus ? "the session bus" : "desktop actions");
        Sandbox sandbox;
        ScopedEnvironment environment;
        environment.Set("XDG_DATA_HOME", sandbox.DataHome());
        environment.Set("XDG_DATA_DIRS", sandbox.DataDirs());
        std::optional<PrivateBus> bus;
        if (overTheBus) {
            sandbox.InstallBusCompanion();
            bus.emplace(sandbox);
            environment.Set("DBUS_SESSION_BUS_ADDRESS", bus->Address());
        } else {
            sandbox.InstallCompanion(verbs);
        }
        App app;
        for (int64_t command = 1; command <= 5; ++command)
            app.ShowCleanerAppWithCommand(command);
        std::vector<std::string> received = sandbox.Verbs(verbs.size());
        if (overTheBus) {
            // Each call waits for its reply, so the commands arrive in their order.
            EXPECT_EQ(received, verbs);
            continue;
        }
        // Desktop actions start detached and may finish in any order.
        std::vector<std::string> expected = verbs;
        std::sort(expected.begin(), expected.end());
        std::sort(received.begin(), received.end());
        EXPECT_EQ(received, expected);
    }
}

}  // namespace
