// The store of preference domains. Each process keeps a view of every domain it
// touches and the keys it changed there; Synchronize brings the view and the disk
// into step, keeping the keys other processes wrote meanwhile. Abstract so that
// tests can put a store that fails in its place.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/PropertyListValue.h"

namespace platform {

// The names of the scopes a domain is read and written in.
inline constexpr std::string_view kCFPreferencesAnyApplication = "kCFPreferencesAnyApplication";
inline constexpr std::string_view kCFPreferencesAnyUser = "kCFPreferencesAnyUser";
inline constexpr std::string_view kCFPreferencesCurrentUser = "kCFPreferencesCurrentUser";
inline constexpr std::string_view kCFPreferencesAnyHost = "kCFPreferencesAnyHost";
inline constexpr std::string_view kCFPreferencesCurrentHost = "kCFPreferencesCurrentHost";

class PreferenceStore {
  public:
    virtual ~PreferenceStore() = default;
    // The key's value in the process's view of the domain; nullopt when it has none.
    virtual std::optional<PropertyListValue> CopyValue(const std::string& key,
                                                       const std::string& domain,
                                                       const std::string& user,
                                                       const std::string& host) = 0;
    // Sets the key in the process's view; nullopt removes it. It reaches the disk
    // at the next Synchronize of the domain.
    virtual void SetValue(const std::string& key, const std::optional<PropertyListValue>& value,
                          const std::string& domain, const std::string& user,
                          const std::string& host) = 0;
    // Removes the keys from the process's view, as SetValue with nullopt does.
    virtual void SetMultiple(const std::vector<std::string>& keysToRemove,
                             const std::string& domain, const std::string& user,
                             const std::string& host) = 0;
    // Brings the view and the disk into step; false when that failed, the
    // process's changes then staying pending.
    virtual bool Synchronize(const std::string& domain, const std::string& user,
                             const std::string& host) = 0;
    // The defaults object's own synchronisation: every domain with pending changes.
    virtual bool SynchronizeDefaults() = 0;
};

PreferenceStore& CurrentPreferenceStore();
// Replaces the store; nullptr restores the platform's own. The caller keeps ownership.
void InstallPreferenceStore(PreferenceStore* store);

}  // namespace platform
