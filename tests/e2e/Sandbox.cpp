#include "e2e/Sandbox.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

namespace {

void WriteFile(const std::string& path, const std::string& text) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path) << text;
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// The strings as an argv or envp array, ended by a null pointer.
std::vector<char*> NullTerminated(const std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    pointers.reserve(strings.size() + 1);
    for (const std::string& text : strings)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

std::string TimestampSecondsAgo(int64_t seconds) {
    const std::time_t when = std::time(nullptr) - seconds;
    std::tm utc{};
    gmtime_r(&when, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

Sandbox::Sandbox() {
    for (const char* folder : {"home/Desktop", "data/Trash/files", "config", "dirs"}) {
        fs::create_directories(root_.Path() + "/" + folder);
    }
}

PrivateBus::PrivateBus(const Sandbox& sandbox) {
    int pipeFds[2];
    if (pipe(pipeFds) != 0)
        throw std::runtime_error("pipe failed");
    const std::vector<std::string> command = {"dbus-daemon", "--session", "--nofork",
                                              "--print-address=" + std::to_string(pipeFds[1])};
    const std::vector<std::string> environment = {"XDG_DATA_DIRS=" + sandbox.DataDirs(),
                                                  "PATH=/usr/local/bin:/usr/bin:/bin"};
    const std::vector<char*> argv = NullTerminated(command);
    const std::vector<char*> envp = NullTerminated(environment);
    pid_ = fork();
    if (pid_ == 0) {
        close(pipeFds[0]);
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        execvpe(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    close(pipeFds[1]);
    char buffer[512];
    for (ssize_t got; address_.find('\n') == std::string::npos &&
                      (got = read(pipeFds[0], buffer, sizeof buffer)) > 0;) {
        address_.append(buffer, static_cast<size_t>(got));
    }
    close(pipeFds[0]);
    address_ = address_.substr(0, address_.find('\n'));
    if (address_.empty())
        throw std::runtime_error("dbus-daemon gave no address");
}

PrivateBus::~PrivateBus() {
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
    }
}

void Sandbox::InstallCompanion(const std::vector<std::string>& verbs) {
    std::string entry = "[Desktop Entry]\nType=Application\nName=Larkfen\nExec=true\n";
    for (const std::string& verb : verbs) {
        entry.append("\n[Desktop Action ").append(verb).append("]\nName=").append(verb);
        entry.append("\nExec=sh -c \"echo ").append(verb).append(" >> '");
        entry.append(VerbsFile()).append("'\"\n");
    }
    WriteFile(DataHome() + "/applications/com.ombrastel.larkfen.desktop", entry);
}

void Sandbox::InstallBusCompanion() {
    const std::string command = std::string(LARKFEN_STANDIN) + " --install " + DataDirs() +
                                " --log " + VerbsFile() + " > /dev/null";
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("stand-in install failed");
}

void Sandbox::WritePreferences(const std::string& domain,
                               const std::map<std::string, std::string>& keys) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>\n";
    for (const auto& [key, value] : keys)
        xml.append("<key>").append(key).append("</key>").append(value).append("\n");
    WriteFile(Domain(domain), xml + "</dict></plist>\n");
}

void Sandbox::TrashFile(const std::string& name, uint64_t bytes) {
    const std::string path = Trash() + "/" + name;
    std::ofstream(path).close();
    fs::resize_file(path, bytes);
}

void Sandbox::TrashBundle(const std::string& name, const std::string& infoPlistBody) {
    WriteFile(
        Trash() + "/" + name + "/Contents/Info.plist",
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + infoPlistBody + "</dict></plist>");
}

AgentRun Sandbox::Start(const std::vector<std::string>& arguments, bool privateBus, bool asNobody) {
    std::vector<std::string> command;
    if (privateBus)
        command = {"dbus-run-session", "--"};
    command.push_back(LARKFEN_HELPER);
    command.insert(command.end(), arguments.begin(), arguments.end());
    const std::vector<std::string> environment = {"HOME=" + root_.Path() + "/home",
                                                  "XDG_DATA_HOME=" + DataHome(),
                                                  "XDG_CONFIG_HOME=" + root_.Path() + "/config",
                                                  "XDG_DATA_DIRS=" + DataDirs(),
                                                  "PATH=/usr/local/bin:/usr/bin:/bin",
                                                  "LANG=C.UTF-8"};
    // Made before the fork, so that the child only redirects and executes.
    const std::vector<char*> argv = NullTerminated(command);
    const std::vector<char*> envp = NullTerminated(environment);
    int pipeFds[2];
    if (pipe(pipeFds) != 0)
        throw std::runtime_error("pipe failed");
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(pipeFds[1], STDERR_FILENO);
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, STDOUT_FILENO);
        close(pipeFds[0]);
        if (asNobody && getuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0))
            _exit(126);
        execvpe(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    close(pipeFds[1]);
    std::string output;
    char buffer[4096];
    for (ssize_t got; (got = read(pipeFds[0], buffer, sizeof buffer)) > 0;) {
        output.append(buffer, static_cast<size_t>(got));
    }
    close(pipeFds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    AgentRun run;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        // The private bus and the toolkit speak on the same channel; the agent's lines are kept.
        if (line.find("dbus-daemon") != std::string::npos)
            continue;
        run.log.push_back(line);
    }
    return run;
}

std::vector<std::string> Sandbox::Verbs(size_t count) const {
    // Desktop actions run detached: wait for what they write, a bounded while.
    std::vector<std::string> verbs;
    for (int attempt = 0; attempt < 100; ++attempt) {
        verbs.clear();
        std::istringstream lines(ReadFile(VerbsFile()));
        for (std::string line; std::getline(lines, line);)
            verbs.push_back(line);
        if (verbs.size() >= count)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return verbs;
}
