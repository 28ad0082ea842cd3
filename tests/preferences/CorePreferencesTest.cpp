#include "preferences/CorePreferences.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "datetime/ExtensionDate.h"
#include "fakes/ConfigHome.h"
#include "fakes/RecordingLog.h"
#include "fakes/RecordingPreferenceStore.h"
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
        // The first Load wrote the own domain; a second does nothing, and writes nothing.
        ASSERT_TRUE(std::filesystem::remove(home.Domain(kOwnDomain)));
        Load();
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

// What the jobs read with nothing stored, and string arrays, numbers and dates that
// they write and read back, are run end to end; these cover the rest.
TEST_F(AccessorsTest, TheTableAnswersWhenNothingIsStored) {
    EXPECT_TRUE(GetPrefsBoolValue("CheckUpdatesAtStartup", "", false));
    EXPECT_EQ(GetPrefsNumberValue("ProxyPort", ""), 80.0);
    EXPECT_FALSE(GetPrefsBoolValue("AlertTrashFull", kCompanionDomain, false));
    EXPECT_TRUE(GetPrefsDefaultValue_StringArray("SoftwareUpdateLastMsg")->items.empty());
}

TEST_F(AccessorsTest, WritesAndRemovals) {
    const std::string own = std::string(kOwnDomain) + "/";
    SetPrefsValue("Empty", CreateArray<std::string>());
    EXPECT_EQ(store_.values.at(own + "Empty"),
              PropertyListValue::Dictionary({{"values", PropertyListValue::Array()}}));
    EXPECT_TRUE(GetPrefsStrArrayValue("Empty")->items.empty());

    store_.values.insert_or_assign(own + "When", PropertyListValue::String("2020-05-06T07:08:09Z"));
    SetPrefsValue("When", std::shared_ptr<DateTime>());
    EXPECT_EQ(store_.values.count(own + "When"), 0U);
    SetPrefsValue("Flag", true, false);
    SetPrefsValue("Flag", true, true);  // removes, and writes no true
    EXPECT_EQ(store_.values.count(own + "Flag"), 0U);
}

TEST_F(AccessorsTest, ValuesWrittenByOthers) {
    const auto put = [&](const std::string& key, PropertyListValue value) {
        store_.values.insert_or_assign(std::string(kOwnDomain) + "/" + key, std::move(value));
    };
    put("Number", PropertyListValue::String("1234.5"));
    put("Words", PropertyListValue::String("twelve"));
    EXPECT_EQ(GetPrefsNumberValue("Number", ""), 1234.5);
    EXPECT_EQ(GetPrefsNumberValue("Words", ""), 0.0);

    put("Legacy", PropertyListValue::Integer(3700000000));  // seconds from 1904
    EXPECT_EQ(GetPrefsDateValue("Legacy", nullptr, "")->SecondsFrom1970(),
              ExtensionDate::NewDateTimeFromLegacyDateTotalSeconds(3700000000)->SecondsFrom1970());
    put("Stamp", PropertyListValue::String("2020-05-06T07:08:09+02:00"));
    EXPECT_EQ(GetPrefsDateValue("Stamp", nullptr, "")->SecondsFrom1970(), 1588741689.0);
    put("Garbage", PropertyListValue::String("yesterday"));
    // No default after a failed read.
    EXPECT_EQ(GetPrefsDateValue("Garbage", DateTime::Now(nullptr), ""), nullptr);

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
