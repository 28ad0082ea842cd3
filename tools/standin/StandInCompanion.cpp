// A stand-in for the Larkfen companion, for tests and demonstrations: it owns
// com.ombrastel.larkfen on the session bus, answers org.freedesktop.Application,
// and prints every command it receives (and appends it to a file with --log).
//
//   larkfen-standin --install DATA-DIR [--log FILE]
//       writes DATA-DIR/applications/com.ombrastel.larkfen.desktop (D-Bus activatable)
//       and DATA-DIR/dbus-1/services/com.ombrastel.larkfen.service, which start this
//       program when the agent calls; DATA-DIR belongs in XDG_DATA_DIRS.
//   larkfen-standin [--log FILE] [--idle SECONDS]
//       serves the bus until it has been idle that long (default 10).
#include <gio/gio.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr const char* kBusName = "com.ombrastel.larkfen";
constexpr const char* kObjectPath = "/com/ombrastel/larkfen";
constexpr const char* kIntrospection =
    "<node><interface name='org.freedesktop.Application'>"
    "<method name='Activate'><arg type='a{sv}' direction='in'/></method>"
    "<method name='Open'><arg type='as' direction='in'/><arg type='a{sv}' direction='in'/></method>"
    "<method name='ActivateAction'><arg type='s' direction='in'/><arg type='av' direction='in'/>"
    "<arg type='a{sv}' direction='in'/></method>"
    "</interface></node>";

std::string logFile;
guint idleSeconds = 10;
GMainLoop* loop = nullptr;
guint idleTimer = 0;

void Record(const std::string& command) {
    std::printf("%s\n", command.c_str());
    std::fflush(stdout);
    if (!logFile.empty())
        std::ofstream(logFile, std::ios::app) << command << "\n";
}

gboolean QuitWhenIdle(gpointer) {
    g_main_loop_quit(loop);
    return G_SOURCE_REMOVE;
}

void RestartIdleTimer() {
    if (idleTimer != 0)
        g_source_remove(idleTimer);
    idleTimer = g_timeout_add_seconds(idleSeconds, QuitWhenIdle, nullptr);
}

void OnCall(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
            GVariant* parameters, GDBusMethodInvocation* invocation, gpointer) {
    if (std::strcmp(method, "ActivateAction") == 0) {
        const gchar* action = nullptr;
        g_variant_get_child(parameters, 0, "&s", &action);
        Record(action);
    }
    g_dbus_method_invocation_return_value(invocation, nullptr);
    RestartIdleTimer();
}

void OnBus(GDBusConnection* connection, const gchar*, gpointer) {
    static const GDBusInterfaceVTable vtable{OnCall, nullptr, nullptr, {}};
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(kIntrospection, nullptr);
    g_dbus_connection_register_object(connection, kObjectPath, node->interfaces[0], &vtable,
                                      nullptr, nullptr, nullptr);
    g_dbus_node_info_unref(node);
}

void OnNameLost(GDBusConnection* connection, const gchar*, gpointer) {
    if (connection == nullptr) {  // the bus itself went away
        g_main_loop_quit(loop);
        return;
    }
    std::fprintf(stderr, "larkfen-standin: could not own %s on the session bus\n", kBusName);
    g_main_loop_quit(loop);
}

std::string SelfPath() {
    std::array<char, PATH_MAX> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size() - 1);
    return length > 0 ? std::string(path.data(), static_cast<size_t>(length)) : "larkfen-standin";
}

int Install(const std::string& dataDir) {
    namespace fs = std::filesystem;
    const std::string exec = SelfPath() + (logFile.empty() ? "" : " --log " + logFile);
    fs::create_directories(dataDir + "/applications");
    fs::create_directories(dataDir + "/dbus-1/services");
    std::ofstream(dataDir + "/applications/com.ombrastel.larkfen.desktop")
        << "[Desktop Entry]\nType=Application\nName=Larkfen\nExec=" << exec
        << "\nDBusActivatable=true\n";
    std::ofstream(dataDir + "/dbus-1/services/com.ombrastel.larkfen.service")
        << "[D-BUS Service]\nName=" << kBusName << "\nExec=" << exec << "\n";
    std::printf("Installed the stand-in companion under %s\n", dataDir.c_str());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::string installTo;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        if (option == "--log")
            logFile = argv[i + 1];
        else if (option == "--idle")
            idleSeconds = static_cast<guint>(std::stoul(argv[i + 1]));
        else if (option == "--install")
            installTo = argv[i + 1];
    }
    if (!installTo.empty())
        return Install(installTo);
    loop = g_main_loop_new(nullptr, FALSE);
    g_bus_own_name(G_BUS_TYPE_SESSION, kBusName, G_BUS_NAME_OWNER_FLAGS_NONE, OnBus, nullptr,
                   OnNameLost, nullptr, nullptr);
    RestartIdleTimer();
    g_main_loop_run(loop);
    return 0;
}
