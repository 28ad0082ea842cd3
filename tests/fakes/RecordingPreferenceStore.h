// An in-memory store that records the domains it is asked for and can be told
// to fail its synchronisations; installed for the life of the object.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/PreferenceStore.h"

class RecordingPreferenceStore final : public platform::PreferenceStore {
  public:
    RecordingPreferenceStore() { platform::InstallPreferenceStore(this); }
    ~RecordingPreferenceStore() override { platform::InstallPreferenceStore(nullptr); }
    RecordingPreferenceStore(const RecordingPreferenceStore&) = delete;
    RecordingPreferenceStore& operator=(const RecordingPreferenceStore&) = delete;

    std::optional<platform::PropertyListValue> CopyValue(const std::string& key,
                                                         const std::string& domain,
                                                         const std::string&,
                                                         const std::string&) override {
        asked.push_back(domain);
        const auto found = values.find(domain + "/" + key);
        return found != values.end() ? std::optional(found->second) : std::nullopt;
    }
    void SetValue(const std::string& key, const std::optional<platform::PropertyListValue>& value,
                  const std::string& domain, const std::string&, const std::string&) override {
        if (value) {
            values.insert_or_assign(domain + "/" + key, *value);
        } else {
            values.erase(domain + "/" + key);
        }
    }
    void SetMultiple(const std::vector<std::string>& keys, const std::string& domain,
                     const std::string& user, const std::string& host) override {
        for (const auto& key : keys)
            SetValue(key, std::nullopt, domain, user, host);
    }
    bool Synchronize(const std::string& domain, const std::string&, const std::string&) override {
        synchronized.push_back(domain);
        return synchronizes;
    }
    bool SynchronizeDefaults() override { return defaultsSynchronize; }

    std::map<std::string, platform::PropertyListValue> values;  // by "domain/key"
    std::vector<std::string> asked;
    std::vector<std::string> synchronized;
    bool synchronizes = true;
    bool defaultsSynchronize = true;
};
