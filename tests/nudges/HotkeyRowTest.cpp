#include "nudges/HotkeyCombo.h"
#include "nudges/HotkeyPills.h"
#include "nudges/HotkeyRow.h"
#include "tests/fakes/KeyMonitor.h"
#include "tests/fakes/KeyValueStore.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace vorli {
namespace {

using Reached = fakes::KeyMonitor::Reached;
using Strings = std::vector<std::string>;

constexpr std::uint64_t shift = 0x20000, control = 0x40000, option = 0x80000, command = 0x100000;

struct HotkeyRowTest : testing::Test {
  fakes::KeyValueStore store;
  AppSettings settings{store};
  fakes::KeyMonitor keys;
  HotkeyRow row{settings, keys};

  Reached letter(const std::string& characters, std::uint64_t modifiers) {
    return keys.press({.keyCode = 0,
                       .modifierFlags = modifiers,
                       .charactersIgnoringModifiers = characters,
                       .beginsWithLetterOrNumber = true});
  }
  Reached special(std::uint16_t code, std::uint64_t modifiers, const std::string& characters = "") {
    return keys.press(
        {.keyCode = code, .modifierFlags = modifiers, .charactersIgnoringModifiers = characters});
  }
  const std::string& combo() const { return settings.globalHotkeyCombo(); }
};

TEST_F(HotkeyRowTest, recordsTheModifiersInTheirFixedOrder) {
  row.startRecording();
  EXPECT_EQ(letter("k", command | shift | option | control), Reached::monitor);
  EXPECT_EQ(combo(), "ctrl+opt+shift+cmd+K");
  EXPECT_FALSE(row.isRecording);
  EXPECT_EQ(keys.monitors, 0);
  EXPECT_EQ(store.values.at("globalHotkeyCombo"), StoredValue(std::string("ctrl+opt+shift+cmd+K")));
}

TEST_F(HotkeyRowTest, aLetterWithoutAModifierIsTakenAndKeepsRecording) {
  row.startRecording();
  EXPECT_EQ(letter("k", 0), Reached::monitor);
  EXPECT_EQ(letter("k", 0x10000), Reached::monitor);  // caps lock is not one of the four
  EXPECT_TRUE(row.isRecording);
  EXPECT_EQ(combo(), "opt+shift+C");
  letter("k", option);
  EXPECT_EQ(combo(), "opt+K");
}

TEST_F(HotkeyRowTest, escapeCancelsWithAndWithoutModifiers) {
  for (const std::uint64_t modifiers : {std::uint64_t{0}, shift}) {
    row.startRecording();
    EXPECT_EQ(special(53, modifiers, "\x1B"), Reached::monitor);
    EXPECT_FALSE(row.isRecording);
    EXPECT_EQ(keys.monitors, 0);
    EXPECT_EQ(combo(), "opt+shift+C");
  }
}

TEST_F(HotkeyRowTest, aKeyWithoutANameKeepsRecording) {
  row.startRecording();
  special(122, command, "");  // F1
  special(27, command, "-");
  EXPECT_TRUE(row.isRecording);
  EXPECT_EQ(combo(), "opt+shift+C");
}

TEST_F(HotkeyRowTest, namesTheKeysWithoutALetter) {
  const std::pair<std::uint16_t, const char*> cases[] = {
      {36, "↩"},  {48, "⇥"},  {49, "Space"}, {51, "⌫"},  {115, "↖"}, {116, "⇞"}, {117, "⌦"},
      {119, "↘"}, {121, "⇟"}, {123, "←"},    {124, "→"}, {125, "↓"}, {126, "↑"},
  };
  for (const auto& [code, name] : cases) {
    row.startRecording();
    special(code, option);
    EXPECT_EQ(combo(), std::string("opt+") + name);
  }
}

TEST_F(HotkeyRowTest, recordsMoreThanCanBeRegistered) {
  row.startRecording();
  special(126, option);
  EXPECT_EQ(combo(), "opt+↑");
  EXPECT_EQ(parseCombo(combo()), std::nullopt);
  row.startRecording();
  letter("ä", option);
  EXPECT_EQ(combo(), "opt+Ä");
  EXPECT_EQ(parseCombo(combo()), std::nullopt);
}

TEST_F(HotkeyRowTest, aSecondStartAddsNoSecondMonitor) {
  row.startRecording();
  row.startRecording();
  EXPECT_EQ(keys.monitors, 1);
  row.stopRecording();
  EXPECT_EQ(keys.monitors, 0);
  EXPECT_EQ(letter("k", option), Reached::controls);
}

TEST_F(HotkeyRowTest, saysWhatItShows) {
  EXPECT_EQ(row.prompt(), std::nullopt);
  EXPECT_EQ(row.pills(), (Strings{"⌥", "⇧", "C"}));
  EXPECT_EQ(row.accessibilityValue(), "Current shortcut: opt+shift+C");
  EXPECT_EQ(row.accessibilityHint(), "Activates to record a new keyboard shortcut");
  settings.globalHotkeyCombo.set("");
  EXPECT_EQ(row.accessibilityValue(), "No shortcut set");
  EXPECT_EQ(row.pills(), Strings{});
  row.startRecording();
  EXPECT_EQ(row.prompt(), "Press a combination…");
  EXPECT_EQ(row.accessibilityValue(), "Recording. Press a key combination, or press Escape to cancel.");
  EXPECT_EQ(row.accessibilityHint(), "Press Escape to cancel");
}

TEST(HotkeyPillsTest, showsEveryNameOfAModifierAsItsSign) {
  EXPECT_EQ(hotkeyPills("opt+ALT+Option+shift+cmd+command+Meta+ctrl+control"),
            (Strings{"⌥", "⌥", "⌥", "⇧", "⌘", "⌘", "⌘", "⌃", "⌃"}));
  EXPECT_EQ(hotkeyPills("opt+Space"), (Strings{"⌥", "SPACE"}));
  EXPECT_EQ(hotkeyPills("+opt++k+"), (Strings{"⌥", "K"}));
}

}  // namespace
}  // namespace vorli
