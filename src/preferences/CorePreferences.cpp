#include "preferences/CorePreferences.h"

#include "bridge/CoreFoundationExtension.h"
#include "bridge/UniversalExtension.h"
#include "datetime/ExtensionDate.h"
#include "runtime/DebugLog.h"
#include "runtime/RuntimeException.h"
#include "runtime/Text.h"

namespace CorePreferences {

namespace {

constexpr const char* kStoreSyncFailed =
    "CFPreferencesMBS: Failed to synchronize preferences between RAM and disk.";
constexpr const char* kDefaultsSyncFailed =
    "NSUserDefaultsMBS: Failed to synchronize preferences between RAM and disk.";
constexpr const char* kNoDefaultsTable = "The table of default values does not exist yet.";
constexpr const char* kGlobalDomain = "NSGlobalDomain";
constexpr const char* kValuesKey = "values";

std::shared_ptr<Dictionary> dPreferenceDefaults;
bool HasInitialized = false;

platform::PreferenceStore& Store() {
    return platform::CurrentPreferenceStore();
}

const std::string kUser(platform::kCFPreferencesCurrentUser);
const std::string kHost(platform::kCFPreferencesAnyHost);

std::string DomainOrOwn(const std::string& domain) {
    return domain.empty() ? kOwnDomain : domain;
}

// The strings of a string array held in a Variant; nullptr when it holds none.
ArrayRef<std::string> StringArrayOf(const Variant& values) {
    if (IsNull(values) || !VariantIsArray(values) ||
        VariantGetArrayElementType(values) != kTypeString) {
        return nullptr;
    }
    return UniversalExtension::CloneArrayStringZRV(
        VariantArrayAssignmentWithTypeCheck<std::string>(values));
}

}  // namespace

// ---- Start-up ---------------------------------------------------------------------------

void Load() {
    if (HasInitialized)
        return;
    dPreferenceDefaults = std::make_shared<Dictionary>();
    SetupGlobalDefaults();
    LocalPreferences::SetupLocalDefaults();
    Synchronize();
    HasInitialized = true;
    LocalPreferences::LoadLocalPreferences();
    SetPrefsValue("NSApplicationShowExceptions", true, false);
}

void Synchronize() {
    if (SynchronizeZRV(Store(), kOwnDomain, false, true))
        return;
    if (!Store().SynchronizeDefaults())
        System::DebugLog(kDefaultsSyncFailed);
}

// ---- The store ----------------------------------------------------------------------------

bool SynchronizeZRV(platform::PreferenceStore& store, std::string domain, bool anyUser,
                    bool anyHost) {
    if (domain.empty())
        domain = platform::kCFPreferencesAnyApplication;
    const std::string user(anyUser ? platform::kCFPreferencesAnyUser
                                   : platform::kCFPreferencesCurrentUser);
    const std::string host(anyHost ? platform::kCFPreferencesAnyHost
                                   : platform::kCFPreferencesCurrentHost);
    if (store.Synchronize(domain, user, host))
        return true;
    System::DebugLog(kStoreSyncFailed);
    return false;
}

bool AppRemoveKeyZRV(platform::PreferenceStore& store, const std::string& domain,
                     const std::string& key) {
    store.SetMultiple({key}, domain, kUser, kHost);
    return SynchronizeZRV(store, domain, false, true);
}

bool AppSetKeyZRV(platform::PreferenceStore& store, const std::string& domain,
                  const std::string& key, const Variant& value) {
    // A value without a native form arrives as none, which removes the key.
    store.SetValue(key, CoreFoundationExtension::ValueAsCFZRV(value), domain, kUser, kHost);
    return SynchronizeZRV(store, domain, false, true);
}

Variant AppGetKeyZRV(platform::PreferenceStore& store, std::string domain, const std::string& key) {
    if (domain.empty() || TextEquals(domain, kGlobalDomain)) {
        domain = platform::kCFPreferencesAnyApplication;
    }
    const auto value = store.CopyValue(key, domain, kUser, kHost);
    if (!value)
        return Variant();
    return CoreFoundationExtension::ValueAsRBZRV(*value);
}

// ---- The table of defaults ----------------------------------------------------------------

void SetupGlobalDefaults() {
    SetPrefsDefaultValue("CheckUpdatesAtStartup", BooleanToVariant(true));
    SetPrefsDefaultValue("ShowUnsupportedWarning", BooleanToVariant(true));
    SetPrefsDefaultValue("ShowDebugMenu", BooleanToVariant(false));
    SetPrefsDefaultValue("EnableLiveSearch", BooleanToVariant(true));
    SetPrefsDefaultValue("ProxyPort", Int64ToVariant(80));
    SetPrefsDefaultValue("ResolveFileLocationsExtensively", BooleanToVariant(false));
    SetPrefsDefaultValue("SoftwareUpdateLastMsg", StringToVariant("Not checked."));
}

void SetPrefsDefaultValue(const std::string& key, const Variant& value) {
    if (dPreferenceDefaults == nullptr)
        throw NilObjectException(kNoDefaultsTable);
    dPreferenceDefaults->SetValue(StringToVariant(key), value);
}

Variant GetPrefsDefaultValue(const std::string& key) {
    if (!HasInitialized)
        return Variant();
    return dPreferenceDefaults->Lookup(StringToVariant(key), Variant());
}

ArrayRef<std::string> GetPrefsDefaultValue_StringArray(const std::string& key) {
    const auto entry =
        std::dynamic_pointer_cast<Dictionary>(GetPrefsDefaultValue(key).ObjectValue());
    if (entry == nullptr || !entry->HasKey(StringToVariant(kValuesKey))) {
        return CreateArray<std::string>();
    }
    const auto strings = StringArrayOf(entry->Value(StringToVariant(kValuesKey)));
    return strings != nullptr ? strings : CreateArray<std::string>();
}

Variant GetDefault(const std::string& key, const Variant& fallback) {
    const Variant boxedKey = StringToVariant(key);
    if (dPreferenceDefaults != nullptr && dPreferenceDefaults->HasKey(boxedKey)) {
        return dPreferenceDefaults->Value(boxedKey);
    }
    return fallback;
}

// ---- Readers ------------------------------------------------------------------------------

bool GetPrefsBoolValue(const std::string& key, const std::string& domain, bool skipInitCheck) {
    if (!skipInitCheck && !HasInitialized) {
        return VariantToBoolean(GetDefault(key, BooleanToVariant(false)));
    }
    const Variant value = AppGetKeyZRV(Store(), DomainOrOwn(domain), key);
    if (!value.IsNil())
        return VariantToBoolean(value);
    return VariantToBoolean(GetDefault(key, BooleanToVariant(false)));
}

double GetPrefsNumberValue(const std::string& key, const std::string& domain) {
    if (!HasInitialized)
        return VariantToDouble(GetDefault(key, DoubleToVariant(0.0)));
    const Variant value = AppGetKeyZRV(Store(), DomainOrOwn(domain), key);
    if (!value.IsNil() && RuntimeIsNumeric(value))
        return VariantToDouble(value);
    return VariantToDouble(GetDefault(key, DoubleToVariant(0.0)));
}

std::shared_ptr<DateTime> GetPrefsDateValue(const std::string& key,
                                            const std::shared_ptr<DateTime>& defaultValue,
                                            const std::string& domain) {
    if (!HasInitialized)
        return defaultValue;
    const Variant value = AppGetKeyZRV(Store(), DomainOrOwn(domain), key);
    if (value.IsNil())
        return RuntimeCheckCast<DateTime>(GetDefault(key, Variant(defaultValue)));
    if (RuntimeIsNumeric(value)) {
        return ExtensionDate::NewDateTimeFromLegacyDateTotalSeconds(VariantToDouble(value));
    }
    return ExtensionDate::ParseTimeStampZRV(VariantToString(value));
}

std::shared_ptr<Dictionary> GetPrefsDictionaryValue(const std::string& key) {
    if (!HasInitialized)
        return RuntimeCheckCast<Dictionary>(GetDefault(key, Variant()));
    const Variant value = AppGetKeyZRV(Store(), kOwnDomain, key);
    if (!value.IsNil() && RuntimeObjectIsa<Dictionary>(value)) {
        return RuntimeCheckCast<Dictionary>(value);
    }
    return RuntimeCheckCast<Dictionary>(GetDefault(key, Variant()));
}

ArrayRef<std::string> GetPrefsStrArrayValue(const std::string& key) {
    auto result = CreateArray<std::string>();
    if (!HasInitialized)
        return GetPrefsDefaultValue_StringArray(key);
    const auto dictionary = GetPrefsDictionaryValue(key);
    if (dictionary == nullptr)
        return GetPrefsDefaultValue_StringArray(key);
    if (!dictionary->HasKey(StringToVariant(kValuesKey)))
        return result;
    const Variant values = dictionary->Value(StringToVariant(kValuesKey));
    if (IsNull(values) || !VariantIsArray(values))
        return result;
    switch (VariantGetArrayElementType(values)) {
        case kTypeObject: {
            // What the store gives back: elements of any type, of which the strings count.
            const ArrayRef<Variant> elements = VariantArrayAssignmentWithTypeCheck<Variant>(values);
            for (const Variant& element : elements->items) {
                if (VarType(element) == kTypeString)
                    result->items.push_back(VariantToString(element));
            }
            return result;
        }
        case kTypeString:
            return StringArrayOf(values);
        default:
            return result;
    }
}

// ---- Writers ------------------------------------------------------------------------------

void SetPrefsValue(const std::string& key, bool value, bool remove) {
    if (remove) {
        AppRemoveKeyZRV(Store(), kOwnDomain, key);
    } else {
        AppSetKeyZRV(Store(), kOwnDomain, key, BooleanToVariant(value));
    }
}

void SetPrefsValue(const std::string& key, double value, bool remove) {
    if (remove) {
        AppRemoveKeyZRV(Store(), kOwnDomain, key);
    } else {
        AppSetKeyZRV(Store(), kOwnDomain, key, DoubleToVariant(value));
    }
}

void SetPrefsValue(const std::string& key, const std::shared_ptr<DateTime>& value) {
    if (value == nullptr) {
        AppRemoveKeyZRV(Store(), kOwnDomain, key);
    } else {
        AppSetKeyZRV(Store(), kOwnDomain, key,
                     StringToVariant(ExtensionDate::ISO8601TimeStampZRV(value)));
    }
}

void SetPrefsValue(const std::string& key, const ArrayRef<std::string>& values) {
    auto dictionary = std::make_shared<Dictionary>();
    dictionary->SetValue(StringToVariant(kValuesKey), Variant(values));
    SetPrefsDictionaryValue(key, dictionary);
}

void SetPrefsDictionaryValue(const std::string& key, const std::shared_ptr<Dictionary>& value) {
    if (value == nullptr) {
        AppRemoveKeyZRV(Store(), kOwnDomain, key);
    } else {
        AppSetKeyZRV(Store(), kOwnDomain, key, Variant(value));
    }
}

}  // namespace CorePreferences

namespace LocalPreferences {

void SetupLocalDefaults() {}

void LoadLocalPreferences() {}

}  // namespace LocalPreferences
