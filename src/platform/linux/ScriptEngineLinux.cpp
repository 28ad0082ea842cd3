// The script engine of this system understands exactly the four-line script the
// agent builds:
//     tell application "PATH"
//     activate
//     VERB
//     end tell
// PATH is the companion's desktop entry. An entry with DBusActivatable=true is
// activated and handed the verb as an action over the session bus; otherwise the
// entry's [Desktop Action VERB] is started, detached. Every failure carries a
// code and a message.
#include "platform/ScriptEngine.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gio/gio.h>

#include "platform/DesktopEntry.h"

namespace platform {

namespace {

constexpr std::string_view kTellPrefix = "tell application \"";
constexpr int64_t kSyntaxError = -2741;  // the script is not of the shape above
constexpr int64_t kApplicationNotFound = -1728;
constexpr int64_t kNotRunning = -600;      // the companion could not be reached
constexpr int64_t kNotUnderstood = -1708;  // the companion has no such command
constexpr int kBusTimeoutMs = 25000;

constexpr const char* kShapeMessage =
    "Expected the script: tell application \"PATH\", activate, a command, end tell.";

struct Parsed {
    std::string path;
    std::string verb;
};

std::optional<Parsed> Parse(const std::string& source) {
    std::vector<std::string> lines;
    for (size_t from = 0;;) {
        const size_t end = source.find('\n', from);
        lines.push_back(source.substr(from, end == std::string::npos ? end : end - from));
        if (end == std::string::npos)
            break;
        from = end + 1;
    }
    if (lines.size() != 4 || !lines[0].starts_with(kTellPrefix) || !lines[0].ends_with("\"") ||
        lines[0].size() <= kTellPrefix.size() + 1 || lines[1] != "activate" || lines[2].empty() ||
        lines[2].find_first_of(" \t\"") != std::string::npos || lines[3] != "end tell") {
        return std::nullopt;
    }
    return Parsed{lines[0].substr(kTellPrefix.size(), lines[0].size() - kTellPrefix.size() - 1),
                  lines[2]};
}

// The object path of a D-Bus activatable application: "/" and its ID with "."
// as "/" and "-" as "_".
std::string ObjectPathOf(const std::string& id) {
    std::string path = "/" + id;
    for (char& c : path) {
        if (c == '.')
            c = '/';
        if (c == '-')
            c = '_';
    }
    return path;
}

// An Exec line without its field codes ("%f", "%U", ...); "%%" stays a "%".
std::string WithoutFieldCodes(const std::string& exec) {
    std::string command;
    for (size_t i = 0; i < exec.size(); ++i) {
        if (exec[i] != '%' || i + 1 == exec.size()) {
            command += exec[i];
        } else if (exec[++i] == '%') {
            command += '%';
        }
    }
    return command;
}

struct ErrorDeleter {
    void operator()(GError* error) const { g_error_free(error); }
};
using Error = std::unique_ptr<GError, ErrorDeleter>;

ScriptError Failure(int64_t code, std::string message) {
    return ScriptError{true, code, std::move(message)};
}

std::optional<ScriptError> CallBus(const DesktopEntry& entry, const std::string& verb) {
    GError* raw = nullptr;
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &raw);
    Error error(raw);
    if (bus == nullptr)
        return Failure(kNotRunning, error ? error->message : "No session bus.");
    const std::string objectPath = ObjectPathOf(entry.id);
    const auto call = [&](const char* method, GVariant* parameters) -> std::optional<ScriptError> {
        GError* callError = nullptr;
        GVariant* reply = g_dbus_connection_call_sync(
            bus, entry.id.c_str(), objectPath.c_str(), "org.freedesktop.Application", method,
            parameters, nullptr, G_DBUS_CALL_FLAGS_NONE, kBusTimeoutMs, nullptr, &callError);
        if (reply != nullptr)
            g_variant_unref(reply);
        if (callError == nullptr)
            return std::nullopt;
        Error owned(callError);
        return Failure(kNotRunning, owned->message);
    };
    auto failure = call("Activate", g_variant_new("(a{sv})", nullptr));
    if (!failure)
        failure =
            call("ActivateAction", g_variant_new("(sava{sv})", verb.c_str(), nullptr, nullptr));
    g_object_unref(bus);
    return failure;
}

std::optional<ScriptError> StartAction(const std::string& exec) {
    gchar** argv = nullptr;
    GError* raw = nullptr;
    if (!g_shell_parse_argv(WithoutFieldCodes(exec).c_str(), nullptr, &argv, &raw)) {
        Error error(raw);
        return Failure(kApplicationNotFound, error->message);
    }
    // Without DO_NOT_REAP_CHILD GLib starts the command through an intermediate
    // process, so that it outlives the agent and leaves no zombie behind.
    const gboolean started =
        g_spawn_async(nullptr, argv, nullptr,
                      static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDIN_FROM_DEV_NULL),
                      nullptr, nullptr, nullptr, &raw);
    g_strfreev(argv);
    if (started)
        return std::nullopt;
    Error error(raw);
    return Failure(kNotRunning, error->message);
}

class DesktopScript final : public ScriptEngine {
  public:
    void Compile(const std::string& source) override {
        parsed_ = Parse(source);
        error_ = parsed_ ? std::nullopt : std::optional(Failure(kSyntaxError, kShapeMessage));
    }

    void Execute() override {
        if (!parsed_)
            return;  // the compile error stands
        const auto entry = ReadDesktopEntry(parsed_->path);
        if (!entry) {
            error_ =
                Failure(kApplicationNotFound, "Can't get application \"" + parsed_->path + "\".");
        } else if (entry->dbusActivatable) {
            error_ = CallBus(*entry, parsed_->verb);
        } else if (const auto action = entry->actionExec.find(parsed_->verb);
                   action != entry->actionExec.end()) {
            error_ = StartAction(action->second);
        } else {
            error_ = Failure(kNotUnderstood, entry->name +
                                                 " got an error: it does not understand the \"" +
                                                 parsed_->verb + "\" message.");
        }
    }

    const std::optional<ScriptError>& Error() const override { return error_; }

  private:
    std::optional<Parsed> parsed_;
    std::optional<ScriptError> error_;
};

std::function<std::unique_ptr<ScriptEngine>()>& Factory() {
    static std::function<std::unique_ptr<ScriptEngine>()> factory;
    return factory;
}

}  // namespace

std::unique_ptr<ScriptEngine> NewScriptEngine() {
    if (Factory())
        return Factory()();
    return std::make_unique<DesktopScript>();
}

void InstallScriptEngineFactory(std::function<std::unique_ptr<ScriptEngine>()> factory) {
    Factory() = std::move(factory);
}

}  // namespace platform
