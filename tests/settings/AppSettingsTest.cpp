#include "settings/AppSettings.h"
#include "tests/fakes/KeyValueStore.h"

#include <limits>

namespace vorli {
namespace {

struct AppSettingsTest : testing::Test {
  fakes::KeyValueStore store;
};

TEST_F(AppSettingsTest, anEmptyStoreGivesTheDefaults) {
  const AppSettings settings(store);
  EXPECT_FALSE(settings.autoClear().get());
  EXPECT_FALSE(settings.gentleNudges().get());
  EXPECT_TRUE(settings.quietDuringFocus().get());
  EXPECT_TRUE(settings.hapticFeedback().get());
  EXPECT_FALSE(settings.edgeGlow().get());
  EXPECT_FALSE(settings.autoRefreshOnPressure().get());
  EXPECT_EQ(settings.idleThresholdMinutes().get(), 60);
  EXPECT_EQ(settings.globalHotkeyCombo().get(), "opt+shift+C");
  EXPECT_FALSE(settings.launchAtLogin().get());
  EXPECT_FALSE(settings.quitHiddenAppsOnClear().get());
  EXPECT_EQ(settings.dialPanel().get(), "auto");
  EXPECT_FALSE(settings.lastAutoRefresh().has_value());
  EXPECT_TRUE(store.writes.empty());
}

TEST_F(AppSettingsTest, storedValuesAreLoadedFromTheirKeys) {
  store.values = {{"autoClear", true},
                  {"gentleNudges", true},
                  {"quietDuringFocus", false},
                  {"hapticFeedback", false},
                  {"edgeGlow", true},
                  {"autoRefreshOnPressure", true},
                  {"idleThresholdMinutes", std::int64_t{15}},
                  {"globalHotkeyCombo", std::string("cmd+K")},
                  {"launchAtLogin", true},
                  {"quitHiddenAppsOnClear", true},
                  {"dialPanel", std::string("dark")},
                  {"lastAutoRefresh", Date{5.0}}};
  const AppSettings settings(store);
  EXPECT_TRUE(settings.autoClear().get());
  EXPECT_TRUE(settings.gentleNudges().get());
  EXPECT_FALSE(settings.quietDuringFocus().get());
  EXPECT_FALSE(settings.hapticFeedback().get());
  EXPECT_TRUE(settings.edgeGlow().get());
  EXPECT_TRUE(settings.autoRefreshOnPressure().get());
  EXPECT_EQ(settings.idleThresholdMinutes().get(), 15);
  EXPECT_EQ(settings.globalHotkeyCombo().get(), "cmd+K");
  EXPECT_TRUE(settings.launchAtLogin().get());
  EXPECT_TRUE(settings.quitHiddenAppsOnClear().get());
  EXPECT_EQ(settings.dialPanel().get(), "dark");
  EXPECT_EQ(settings.lastAutoRefresh(), Date{5.0});
}

TEST_F(AppSettingsTest, aStoredFalseWinsOverADefaultOfTrueAfterAReload) {
  AppSettings(store).quietDuringFocus.set(false);
  AppSettings(store).hapticFeedback.set(false);
  const AppSettings reloaded(store);
  EXPECT_FALSE(reloaded.quietDuringFocus().get());
  EXPECT_FALSE(reloaded.hapticFeedback().get());
}

TEST_F(AppSettingsTest, aThresholdUnderOneLoadsAsSixtyAndStaysStored) {
  for (const std::int64_t stored : {0, -5}) {
    store.values["idleThresholdMinutes"] = stored;
    const AppSettings settings(store);
    EXPECT_EQ(settings.idleThresholdMinutes().get(), 60);
    EXPECT_EQ(store.values.at("idleThresholdMinutes"), StoredValue(stored));
  }
  store.values["idleThresholdMinutes"] = std::int64_t{1};
  EXPECT_EQ(AppSettings(store).idleThresholdMinutes().get(), 1);
}

TEST_F(AppSettingsTest, theThresholdsSetterStoresWhatItIsGiven) {
  AppSettings settings(store);
  settings.idleThresholdMinutes.set(-5);
  EXPECT_EQ(settings.idleThresholdMinutes().get(), -5);
  EXPECT_EQ(store.values.at("idleThresholdMinutes"), StoredValue(std::int64_t{-5}));
}

TEST_F(AppSettingsTest, valuesOfAnotherTypeLoadAsTheTypedReadGivesThem) {
  store.values = {{"autoClear", std::string("nonsense")},
                  {"quietDuringFocus", std::string("nonsense")},
                  {"idleThresholdMinutes", Date{60.0}},
                  {"globalHotkeyCombo", true},
                  {"lastAutoRefresh", 5.0}};
  const AppSettings settings(store);
  EXPECT_FALSE(settings.autoClear().get());
  EXPECT_FALSE(settings.quietDuringFocus().get());
  EXPECT_EQ(settings.idleThresholdMinutes().get(), 60);
  EXPECT_EQ(settings.globalHotkeyCombo().get(), "opt+shift+C");
  EXPECT_FALSE(settings.lastAutoRefresh().has_value());
}

TEST_F(AppSettingsTest, anEmptyComboIsKept) {
  store.values["globalHotkeyCombo"] = std::string();
  EXPECT_EQ(AppSettings(store).globalHotkeyCombo().get(), "");
}

TEST_F(AppSettingsTest, eachSetterWritesItsOwnKey) {
  AppSettings settings(store);
  settings.autoClear.set(true);
  settings.gentleNudges.set(true);
  settings.quietDuringFocus.set(false);
  settings.hapticFeedback.set(false);
  settings.edgeGlow.set(true);
  settings.autoRefreshOnPressure.set(true);
  settings.idleThresholdMinutes.set(30);
  settings.globalHotkeyCombo.set("ctrl+P");
  settings.launchAtLogin.set(true);
  settings.quitHiddenAppsOnClear.set(true);
  settings.dialPanel.set("light");
  settings.setLastAutoRefresh(Date{9.0});
  const std::map<std::string, StoredValue> expected{{"autoClear", true},
                                                    {"gentleNudges", true},
                                                    {"quietDuringFocus", false},
                                                    {"hapticFeedback", false},
                                                    {"edgeGlow", true},
                                                    {"autoRefreshOnPressure", true},
                                                    {"idleThresholdMinutes", std::int64_t{30}},
                                                    {"globalHotkeyCombo", std::string("ctrl+P")},
                                                    {"launchAtLogin", true},
                                                    {"quitHiddenAppsOnClear", true},
                                                    {"dialPanel", std::string("light")},
                                                    {"lastAutoRefresh", Date{9.0}}};
  EXPECT_EQ(store.values, expected);
  EXPECT_EQ(store.writes.size(), 12u);
}

TEST_F(AppSettingsTest, observersHearOfAChangeBeforeItIsWritten) {
  AppSettings settings(store);
  std::vector<bool> heard;
  bool writtenWhenHeard = false;
  const auto token = settings.edgeGlow().subscribe([&](bool value) {
    heard.push_back(value);
    writtenWhenHeard = store.values.contains("edgeGlow");
  });
  settings.edgeGlow.set(true);
  EXPECT_EQ(heard, (std::vector<bool>{false, true}));
  EXPECT_FALSE(writtenWhenHeard);
  EXPECT_EQ(store.values.at("edgeGlow"), StoredValue(true));
}

TEST_F(AppSettingsTest, aValueReplacedByAnObserverIsTheOneWritten) {
  AppSettings settings(store);
  const auto token = settings.launchAtLogin().subscribeToChanges([&](bool value) {
    if (value) settings.launchAtLogin.set(false);
  });
  settings.launchAtLogin.set(true);
  EXPECT_FALSE(settings.launchAtLogin().get());
  EXPECT_EQ(store.values.at("launchAtLogin"), StoredValue(false));
}

TEST_F(AppSettingsTest, lastAutoRefreshLivesInTheStoreAlone) {
  AppSettings settings(store);
  settings.setLastAutoRefresh(Date{100.0});
  EXPECT_EQ(settings.lastAutoRefresh(), Date{100.0});
  store.values["lastAutoRefresh"] = Date{200.0};
  EXPECT_EQ(settings.lastAutoRefresh(), Date{200.0});
  settings.setLastAutoRefresh(std::nullopt);
  EXPECT_FALSE(settings.lastAutoRefresh().has_value());
  EXPECT_FALSE(store.values.contains("lastAutoRefresh"));
}

}  // namespace
}  // namespace vorli
