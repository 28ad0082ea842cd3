// A new folder for one test, under $TMPDIR (else /tmp), removed with everything in
// it when the object goes, even a tree too deep to be named by a single path.
// Helpers make the files, folders and links a test lays out in it.
#pragma once

#include <grp.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

extern char** environ;

class TempFolder {
  public:
    TempFolder() {
        const char* base = std::getenv("TMPDIR");
        std::string pattern =
            std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/larkfen-test-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("mkdtemp failed");
        path_ = pattern;
        // Open to everyone, so that a test that drops its privileges can still walk it.
        chmod(path_.c_str(), 0755);
    }
    ~TempFolder() {
        // A test may leave a folder it made unreadable; the tools cope with any depth.
        Run({"chmod", "-R", "u+rwx", path_});
        Run({"rm", "-rf", "--", path_});
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& Path() const { return path_; }
    std::string operator/(std::string_view relative) const {
        return path_ + "/" + std::string(relative);
    }

    // Makes the folder and every missing folder above it.
    void MakeFolder(std::string_view relative) const {
        std::filesystem::create_directories(*this / relative);
    }
    // Writes a file holding the bytes, making its folder first.
    void WriteFile(std::string_view relative, std::string_view bytes) const {
        const std::filesystem::path file = *this / relative;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
    }
    // A symbolic link at relative that holds target as it stands.
    void MakeLink(std::string_view relative, std::string_view target) const {
        const std::filesystem::path link = *this / relative;
        std::filesystem::create_directories(link.parent_path());
        std::filesystem::create_symlink(std::string(target), link);
    }
    std::string ReadFile(std::string_view relative) const {
        std::ifstream file(*this / relative, std::ios::binary);
        std::stringstream bytes;
        bytes << file.rdbuf();
        return bytes.str();
    }

  private:
    static void Run(std::vector<std::string> arguments) {
        std::vector<char*> argv;
        for (std::string& argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        pid_t child = 0;
        if (posix_spawnp(&child, argv[0], nullptr, nullptr, argv.data(), environ) == 0) {
            int status = 0;
            waitpid(child, &status, 0);
        }
    }

    std::string path_;
};

// The superuser reads any folder, so a test that needs one it cannot read drops to
// the unprivileged "nobody" first. Only for a child process: a death test's statement.
inline void DropRootPrivileges() {
    if (geteuid() != 0)
        return;
    constexpr gid_t kNobody = 65534;
    if (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0) {
        std::_Exit(3);
    }
}
