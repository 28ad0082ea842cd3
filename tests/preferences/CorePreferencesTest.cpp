#include "preferences/CorePreferences.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "datetime/ExtensionDate.h"
#include "fakes/ConfigHome.h"
#include "fakes/RecordingLog.h"
#include "fakes/RecordingPreferenceStore.h"
#include "platform/PropertyListFile.h"
#include "runtime/RuntimeException.h"

namespace {

using namespace CorePreferences;  // NOLINT: the module under test
using platform::PropertyListValue;

const std::string kAny(platform::kCFPreferencesAnyApplication);

// The module keeps its state for the life of the process, so what must see it
// before Load runs in a child process of its own; the child's exit code tells
// whether its expectations held.
#define EXPECT_IN_CHILD(body)                               \
    EXPECT_EXIT(                                            \
        {                                                   \
            body;                                           \
            std::exit(testing::Test::HasFailure() ? 1 : 0); \
        },                                                  \
        testing::ExitedWithCode(0), "")

TEST(CorePreferencesDeathTest, BeforeAndAfterLoad) {
    EXPECT_IN_CHILD({
        ConfigHome home;
        EXPECT_EQ(VariantToInt64(GetDefault("ProxyPort", Int64ToVariant(0))), 0);
        EXPECT_TRUE(GetPrefsDefaultValue("ProxyPort").IsNil());
        EXPECT_THROW(SetPrefsDefaultValue("x", Int64ToVariant(1)), NilObjectException);
        const auto fallback = DateTime::Now(nullptr);
        EXPECT_EQ(GetPrefsDateValue("LastScanDate", fallback, ""), fallback);
        EXPECT_FALSE(GetPrefsBoolValue("CheckUpdatesAtStartup", "", true));   // reads the store
        EXPECT_FALSE(GetPrefsBoolValue("CheckUpdatesAtStartup", "", false));  // no table yet
        Load();
        EXPECT_EQ(VariantToInt64(GetDefault("ProxyPort", Int64ToVariant(0))), 80);
        EXPECT_EQ(VariantToInt64(GetPrefsDefaultValue("ProxyPort")), 80);
        EXPECT_TRUE(GetPrefsBoolValue("CheckUpdatesAtStartup", "", false));
        const auto written = platform::ReadPropertyListFile(home.Domain(kOwnDomain));
        ASSERT_TRUE(written.has_value());
        EXPECT_TRUE(written->Find("NSApplicationShowExceptions")->BooleanValue());
        std::filesystem::remove(home.Domain(kOwnDomain));
        Load();  // a second Load does nothing, and writes nothing
        EXPECT_FALSE(std::filesystem::exists(home.Domain(kOwnDomain)));
    });
}

TEST(CorePreferencesDeathTest, FailedSynchronisationLogsInOrder) {
    struct Row {
        bool defaultsSynchronize;
        std::vector<std::string> expected;
    };
    const std::string store =
        "CFPreferencesMBS: Failed to synchronize preferences between RAM and disk.";
    const std::string defaults =
        "NSUserDefaultsMBS: Failed to synchronize preferences between RAM and disk.";
    const Row rows[] = {{true, {store, store}}, {false, {store, defaults, store}}};
    for (const Row& row : rows) {
        EXPECT_IN_CHILD({
            RecordingLog log;
            RecordingPreferenceStore fake;
            fake.synchronizes = false;
            fake.defaultsSynchronize = row.defaultsSynchronize;
            Load();
            EXPECT_EQ(log.entries, row.expected);
            EXPECT_TRUE(GetPrefsBoolValue("NSApplicationShowExceptions", "", false));
        });
    }
}

class AccessorsTest : public testing::Test {
  protected:
    void SetUp() override { Load(); }
    RecordingPreferenceStore store_;
};

TEST_F(AccessorsTest, DomainsAskedOf) {
    AppGetKeyZRV(store_, "", "k");
    AppGetKeyZRV(store_, "nSgLoBaLdOmAiN", "k");
    AppGetKeyZRV(store_, kCompanionDomain, "k");
    GetPrefsBoolValue("AlertTrashFull", "", false);
    EXPECT_EQ(store_.asked, (std::vector<std::string>{kAny, kAny, kCompanionDomain, kOwnDomain}));
    store_.synchronized.clear();
    SynchronizeZRV(store_, "", false, true);
    SynchronizeZRV(store_, "NSGlobalDomain", false, true);
    EXPECT_EQ(store_.synchronized, (std::vector<std::string>{kAny, "NSGlobalDomain"}));
}

TEST_F(AccessorsTest, FallbacksWithNothingStored) {
    EXPECT_FALSE(GetPrefsBoolValue("AlertTrashFull", kCompanionDomain, false));
    EXPECT_TRUE(GetPrefsBoolValue("CheckUpdatesAtStartup", "", false));  // the table's entry
    EXPECT_EQ(GetPrefsNumberValue("TrashLastWarnSizeSize", ""), 0.0);
    EXPECT_EQ(GetPrefsNumberValue("ProxyPort", ""), 80.0);
    EXPECT_EQ(GetPrefsDateValue("TrashLastWarnSizeTime", nullptr, ""), nullptr);
    EXPECT_EQ(GetPrefsDictionaryValue("TrashUninstallerHistory"), nullptr);
    EXPECT_TRUE(GetPrefsStrArrayValue("TrashUninstallerHistory")->items.empty());
    EXPECT_TRUE(GetPrefsDefaultValue_StringArray("SoftwareUpdateLastMsg")->items.empty());
}

TEST_F(AccessorsTest, StoredFormsReadBack) {
    auto names = CreateArray<std::string>();
    names->items = {"Viewer (2.1).app", "notes.txt", "Viewer (2.1).app", "ü"};
    SetPrefsValue("TrashUninstallerHistory", names);
    EXPECT_EQ(GetPrefsStrArrayValue("TrashUninstallerHistory")->items, names->items);
    const auto& stored = store_.values.at(std::string(kOwnDomain) + "/TrashUninstallerHistory");
    ASSERT_NE(stored.Find("values"), nullptr);
    EXPECT_EQ(stored.Entries().size(), 1U);

    SetPrefsValue("Empty", CreateArray<std::string>());
    EXPECT_EQ(store_.values.at(std::string(kOwnDomain) + "/Empty").Find("values")->Items().size(),
              0U);
    EXPECT_TRUE(GetPrefsStrArrayValue("Empty")->items.empty());

    const auto now = DateTime::Now(nullptr);
    SetPrefsValue("TrashLastWarnSizeTime", now);
    const auto back = GetPrefsDateValue("TrashLastWarnSizeTime", nullptr, "");
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(static_cast<int64_t>(back->SecondsFrom1970()),
              static_cast<int64_t>(std::floor(now->SecondsFrom1970())));
    SetPrefsValue("TrashLastWarnSizeTime", std::shared_ptr<DateTime>());
    EXPECT_EQ(GetPrefsDateValue("TrashLastWarnSizeTime", nullptr, ""), nullptr);

    SetPrefsValue("TrashLastWarnSizeSize", 62914560.0, false);
    EXPECT_EQ(GetPrefsNumberValue("TrashLastWarnSizeSize", ""), 62914560.0);
    SetPrefsValue("Flag", true, false);
    EXPECT_TRUE(GetPrefsBoolValue("Flag", "", false));
    SetPrefsValue("Flag", true, true);  // removes, and writes no true
    EXPECT_FALSE(GetPrefsBoolValue("Flag", "", false));
    EXPECT_EQ(store_.values.count(std::string(kOwnDomain) + "/Flag"), 0U);
}

TEST_F(AccessorsTest, ValuesWrittenByOthers) {
    const auto put = [&](const std::string& key, PropertyListValue value) {
        store_.values.insert_or_assign(std::string(kOwnDomain) + "/" + key, std::move(value));
    };
    put("Number", PropertyListValue::String("1234.5"));
    put("Words", PropertyListValue::String("twelve"));
    EXPECT_EQ(GetPrefsNumberValue("Number", ""), 1234.5);
    EXPECT_EQ(GetPrefsNumberValue("Words", ""), 0.0);

    put("Legacy", PropertyListValue::Integer(3700000000));
    const auto legacy = GetPrefsDateValue("Legacy", nullptr, "");
    ASSERT_NE(legacy, nullptr);
    // Read with the current zone's present offset.
    EXPECT_EQ(
        legacy->SecondsFrom1970(),
        3700000000.0 - 2082844800.0 - static_cast<double>(TimeZone::Current()->SecondsFromGMT()));
    put("Stamp", PropertyListValue::String("2020-05-06T07:08:09+02:00"));
    EXPECT_EQ(GetPrefsDateValue("Stamp", nullptr, "")->SecondsFrom1970(), 1588741689.0);
    put("Garbage", PropertyListValue::String("yesterday"));
    const auto fallback = DateTime::Now(nullptr);
    EXPECT_EQ(GetPrefsDateValue("Garbage", fallback, ""),
              nullptr);                                 // no default after a failed read
    put("Native", PropertyListValue::Date(631152000));  // 2021-01-01 00:00:00 GMT
    EXPECT_EQ(GetPrefsDateValue("Native", nullptr, "")->SQLDateTime(), "2021-01-01 00:00:00");

    put("NoValues", PropertyListValue::Dictionary({{"other", PropertyListValue::Integer(1)}}));
    EXPECT_TRUE(GetPrefsStrArrayValue("NoValues")->items.empty());
    put("Mixed", PropertyListValue::Dictionary(
                     {{"values", PropertyListValue::Array({PropertyListValue::String("a"),
                                                           PropertyListValue::Integer(1),
                                                           PropertyListValue::String("b")})}}));
    EXPECT_EQ(GetPrefsStrArrayValue("Mixed")->items, (std::vector<std::string>{"a", "b"}));
    put("NotADictionary", PropertyListValue::String("values"));
    EXPECT_EQ(GetPrefsDictionaryValue("NotADictionary"), nullptr);
    EXPECT_TRUE(GetPrefsStrArrayValue("NotADictionary")->items.empty());
}

}  // namespace
