// The window system for the tests that need one: started once per test program,
// on an X server of its own (Xvfb) so that the tests never touch a user's screen,
// at a scale of 2 so that the high-density paths are the ones exercised.
#pragma once

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include <wx/app.h>
#include <wx/init.h>

namespace gui_session {

inline constexpr const char* kNoXvfb = "Xvfb is not installed: the window tests are skipped.";
inline constexpr int kScale = 2;

struct Session {
    bool started = false;
    std::string why;
    pid_t server = -1;

    // The toolkit is left to the end of the process; only the server is stopped.
    ~Session() {
        if (server > 0) {
            kill(server, SIGTERM);
            waitpid(server, nullptr, 0);
        }
    }
};

// Starts Xvfb on a display number of its choosing; false when it could not.
inline bool StartServer(Session& session) {
    int channel[2];
    if (pipe(channel) != 0)
        return false;
    const pid_t child = fork();
    if (child == 0) {
        // The server goes with the test, and keeps none of the test's output open.
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        const int quiet = open("/dev/null", O_WRONLY);
        dup2(quiet, STDOUT_FILENO);
        dup2(quiet, STDERR_FILENO);
        close(channel[0]);
        const std::string fd = std::to_string(channel[1]);
        execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "1024x768x24", "-nolisten",
               "tcp", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(channel[1]);
    if (child < 0) {
        close(channel[0]);
        return false;
    }
    session.server = child;
    std::string number;
    char c = 0;
    while (read(channel[0], &c, 1) == 1 && c != '\n')
        number += c;
    close(channel[0]);
    if (number.empty())
        return false;
    setenv("DISPLAY", (":" + number).c_str(), 1);
    return true;
}

// True when the window system runs; else why, for the test to skip with.
inline bool Start(std::string& why) {
    static Session session;
    if (!session.started && session.why.empty()) {
        unsetenv("WAYLAND_DISPLAY");
        setenv("NO_AT_BRIDGE", "1", 1);
        setenv("GDK_SCALE", std::to_string(kScale).c_str(), 1);
        if (!StartServer(session)) {
            session.why = kNoXvfb;
        } else {
            wxApp::SetInstance(new wxApp);  // NOLINT: wx owns the application object
            int argc = 1;
            char name[] = "alerts_tests";
            char* argv[] = {name, nullptr};
            session.started = wxEntryStart(argc, argv);
            if (!session.started)
                session.why = "The window system did not start on Xvfb.";
        }
    }
    why = session.why;
    return session.started;
}

}  // namespace gui_session

#define REQUIRE_GUI()                  \
    do {                               \
        std::string why_;              \
        if (!gui_session::Start(why_)) \
            GTEST_SKIP() << why_;      \
    } while (false)
