// A home of its own for one run of the agent: XDG folders, a Trash, preference
// files written by the test, a stand-in companion, and the agent's log captured.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "fakes/TempFolder.h"

struct AgentRun {
    int exitCode = -1;
    std::vector<std::string> log;  // the entries on standard error, one a line
};

class Sandbox {
  public:
    Sandbox();

    std::string DataHome() const { return root_.Path() + "/data"; }
    std::string DataDirs() const { return root_.Path() + "/dirs"; }
    std::string Trash() const { return DataHome() + "/Trash/files"; }
    std::string Desktop() const { return root_.Path() + "/home/Desktop"; }
    // The file of a preference domain, and the agent's own.
    std::string Domain(const std::string& name) const {
        return root_.Path() + "/config/" + name + ".plist";
    }
    std::string OwnDomain() const { return Domain("com.ombrastel.larkfenhelper"); }
    std::string VerbsFile() const { return root_.Path() + "/verbs"; }

    // A companion whose desktop actions append their verb to VerbsFile; the verbs
    // listed are the ones it understands.
    void InstallCompanion(const std::vector<std::string>& verbs);
    // The D-Bus activatable stand-in companion, for runs under a private bus.
    void InstallBusCompanion();
    // Keys of a domain, as XML values ("<true/>", "<string>..</string>").
    void WritePreferences(const std::string& domain,
                          const std::map<std::string, std::string>& keys);
    // A file of that many bytes (sparse) in the Trash.
    void TrashFile(const std::string& name, uint64_t bytes);
    void TrashBundle(const std::string& name, const std::string& infoPlistBody);

    AgentRun Start(const std::vector<std::string>& arguments, bool privateBus = false,
                   bool asNobody = false);
    // The verbs the companion received, once count of them have arrived (or the wait ran out).
    std::vector<std::string> Verbs(size_t count) const;

  private:
    TempFolder root_;
};

// A session bus of its own for the life of the object, which starts the services
// of the sandbox's data folders on demand.
class PrivateBus {
  public:
    explicit PrivateBus(const Sandbox& sandbox);
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    std::string Address() const { return address_; }

  private:
    pid_t pid_ = -1;
    std::string address_;
};

// "YYYY-MM-DDTHH:MM:SSZ" of now less the seconds.
std::string TimestampSecondsAgo(int64_t seconds);
