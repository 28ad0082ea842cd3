// All of the agent's settings: the two preference domains, the table of default
// values, the low-level operations on the store, and the typed accessors that the
// jobs read and write through. Readers never fail on a missing key: each has its
// fallback. Writers always write to the agent's own domain and synchronise it at
// once.
#pragma once

#include <memory>
#include <string>

#include "platform/PreferenceStore.h"
#include "runtime/DateTime.h"
#include "runtime/Dictionary.h"
#include "runtime/Variant.h"

namespace CorePreferences {

// The agent's own domain, which an empty domain argument selects.
inline constexpr const char* kOwnDomain = "com.ombrastel.larkfenhelper";
// The companion application's domain, read only.
inline constexpr const char* kCompanionDomain = "com.ombrastel.larkfen";

// Builds the table of defaults, synchronises the own domain and makes the store
// readable; writes "NSApplicationShowExceptions". Does nothing after the first call.
void Load();
// Synchronises the own domain, with the defaults object as a second attempt;
// each failure is logged.
void Synchronize();

// The low-level operations, on the store given.
bool SynchronizeZRV(platform::PreferenceStore& store, std::string domain, bool anyUser,
                    bool anyHost);
bool AppRemoveKeyZRV(platform::PreferenceStore& store, const std::string& domain,
                     const std::string& key);
bool AppSetKeyZRV(platform::PreferenceStore& store, const std::string& domain,
                  const std::string& key, const Variant& value);
// The stored value, nil when the key has none.
Variant AppGetKeyZRV(platform::PreferenceStore& store, std::string domain, const std::string& key);

// The table of defaults.
void SetupGlobalDefaults();
// NilObjectException before Load has built the table.
void SetPrefsDefaultValue(const std::string& key, const Variant& value);
// Nil before Load and for a key the table lacks.
Variant GetPrefsDefaultValue(const std::string& key);
// The table's string array under the key ("values" of its dictionary); never nil.
ArrayRef<std::string> GetPrefsDefaultValue_StringArray(const std::string& key);
// The table's entry for the key, else the fallback; works at any time.
Variant GetDefault(const std::string& key, const Variant& fallback);

// Typed readers. An empty domain is the own domain.
bool GetPrefsBoolValue(const std::string& key, const std::string& domain, bool skipInitCheck);
double GetPrefsNumberValue(const std::string& key, const std::string& domain);
// Stored timestamp text, or a legacy number; the default when nothing is stored.
// Nil for text that is no timestamp.
std::shared_ptr<DateTime> GetPrefsDateValue(const std::string& key,
                                            const std::shared_ptr<DateTime>& defaultValue,
                                            const std::string& domain);
std::shared_ptr<Dictionary> GetPrefsDictionaryValue(const std::string& key);
// The strings under "values" of the stored dictionary; never nil.
ArrayRef<std::string> GetPrefsStrArrayValue(const std::string& key);

// Typed writers, to the own domain. `remove` deletes the key instead.
void SetPrefsValue(const std::string& key, bool value, bool remove);
void SetPrefsValue(const std::string& key, double value, bool remove);
// Stored as timestamp text; nil deletes the key.
void SetPrefsValue(const std::string& key, const std::shared_ptr<DateTime>& value);
// Stored as a dictionary whose "values" holds the strings.
void SetPrefsValue(const std::string& key, const ArrayRef<std::string>& values);
// Nil deletes the key.
void SetPrefsDictionaryValue(const std::string& key, const std::shared_ptr<Dictionary>& value);

}  // namespace CorePreferences

namespace LocalPreferences {

// Where an application adds defaults of its own; the agent has none.
void SetupLocalDefaults();
// Where an application loads settings of its own, once the store is readable.
void LoadLocalPreferences();

}  // namespace LocalPreferences
