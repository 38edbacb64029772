#include "nudges/HotkeyCombo.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace vorli {

void PrintTo(const HotkeyCombo& combo, std::ostream* out) {
  *out << combo.keyCode << " with " << combo.modifiers;
}

namespace {

using Combo = std::optional<HotkeyCombo>;

TEST(HotkeyComboTest, readsTheDefault) {
  EXPECT_EQ(parseCombo("opt+shift+C"), Combo({8, 0xA00}));
}

TEST(HotkeyComboTest, blanksAndLetterCaseMakeNoDifference) {
  for (const char* text : {" opt + shift + C ", "OPT+Shift+c", "\topt+\nSHIFT +c", "shift+c+opt",
                           "++opt++shift+C+", "\u00A0opt+shift+C"})
    EXPECT_EQ(parseCombo(text), Combo({8, 0xA00})) << text;
}

TEST(HotkeyComboTest, knowsEveryNameOfAModifier) {
  const std::pair<const char*, std::uint32_t> cases[] = {
      {"cmd", 0x100},    {"command", 0x100}, {"meta", 0x100},  {"opt", 0x800},      {"alt", 0x800},
      {"option", 0x800}, {"shift", 0x200},   {"ctrl", 0x1000}, {"control", 0x1000},
  };
  for (const auto& [name, bit] : cases)
    EXPECT_EQ(parseCombo(name + std::string("+K")), Combo({40, bit})) << name;
}

TEST(HotkeyComboTest, aModifierMayRepeat) {
  EXPECT_EQ(parseCombo("cmd+cmd+K"), Combo({40, 0x100}));
}

TEST(HotkeyComboTest, rejectsCombosWithoutAKeyOrAModifier) {
  for (const char* text : {"", "+", "C", "shift", "opt+shift", "opt+nonsense", "opt+↑", "opt+Ä", "opt+F1",
                           "opt+c d", "   ", "opt+C1"})
    EXPECT_EQ(parseCombo(text), std::nullopt) << text;
}

TEST(HotkeyComboTest, theLastKnownKeyWins) {
  EXPECT_EQ(parseCombo("opt+X+Y"), Combo({16, 0x800}));
  EXPECT_EQ(parseCombo("opt+nonsense+Y"), Combo({16, 0x800}));
  EXPECT_EQ(parseCombo("opt+Y+nonsense"), Combo({16, 0x800}));
}

TEST(HotkeyComboTest, theRecordersNamesOfKeysAreUnderstood) {
  EXPECT_EQ(parseCombo("ctrl+Space"), Combo({49, 0x1000}));
  EXPECT_EQ(parseCombo("ctrl+↩"), Combo({36, 0x1000}));
  EXPECT_EQ(parseCombo("ctrl+⇥"), Combo({48, 0x1000}));
}

TEST(HotkeyComboTest, theKeyTableIsTheANSILayout) {
  constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  constexpr std::uint32_t codes[] = {0, 11, 8,  2, 14, 3, 5,  4, 34, 38, 40, 37, 46, 45, 31, 35, 12, 15,
                                     1, 17, 32, 9, 13, 7, 16, 6, 29, 18, 19, 20, 21, 23, 22, 26, 28, 25};
  for (std::size_t i = 0; i < letters.size(); ++i) EXPECT_EQ(keyCode(letters.substr(i, 1)), codes[i]);
  EXPECT_EQ(keyCode("SPACE"), 49u);
  for (const char* name : {"RETURN", "ENTER", "↩"}) EXPECT_EQ(keyCode(name), 36u);
  for (const char* name : {"TAB", "⇥"}) EXPECT_EQ(keyCode(name), 48u);
  for (const char* name : {"", "a", "ESCAPE", "F1", "-"}) EXPECT_EQ(keyCode(name), std::nullopt);
}

}  // namespace
}  // namespace vorli
