#include "ui/kit/KeyMonitor.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::ui {
namespace {

struct KeyMonitorTest : testing::Test {
  QLineEdit control;
  KeyMonitor monitor;
  std::vector<ports::KeyDown> keys;
  std::optional<Subscription> token;

  void listen() {
    token = monitor.addLocalKeyDownMonitor([this](const ports::KeyDown& key) { keys.push_back(key); });
  }
  void press(int key, Qt::KeyboardModifiers modifiers, const QString& text = {}) {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, key, modifiers, text);
      QApplication::sendEvent(&control, &event);
    }
  }
};

TEST_F(KeyMonitorTest, takesEveryKeyBeforeTheControlsDo) {
  listen();
  press(Qt::Key_K, Qt::NoModifier, "k");
  EXPECT_EQ(control.text(), "");
  ASSERT_EQ(keys.size(), 1u);
  EXPECT_EQ(keys[0].charactersIgnoringModifiers, "K");
  EXPECT_TRUE(keys[0].beginsWithLetterOrNumber);
  EXPECT_EQ(keys[0].modifierFlags, 0u);
  token.reset();
  press(Qt::Key_K, Qt::NoModifier, "k");
  EXPECT_EQ(control.text(), "k");
  EXPECT_EQ(keys.size(), 1u);
}

TEST_F(KeyMonitorTest, knowsTheModifiers) {
  listen();
  press(Qt::Key_C, Qt::ShiftModifier | Qt::AltModifier, "C");
  press(Qt::Key_C, Qt::ControlModifier | Qt::MetaModifier, "\x03");
  EXPECT_EQ(keys[0].modifierFlags, 0xA0000u);
  EXPECT_EQ(keys[1].modifierFlags, 0x140000u);
  EXPECT_EQ(keys[1].charactersIgnoringModifiers, "C");
}

TEST_F(KeyMonitorTest, knowsTheKeysWithoutACharacterByTheirCode) {
  listen();
  const std::pair<int, std::uint16_t> cases[] = {
      {Qt::Key_Escape, 53}, {Qt::Key_Return, 36},    {Qt::Key_Tab, 48},       {Qt::Key_Backtab, 48},
      {Qt::Key_Space, 49},  {Qt::Key_Backspace, 51}, {Qt::Key_Delete, 117},   {Qt::Key_Home, 115},
      {Qt::Key_End, 119},   {Qt::Key_PageUp, 116},   {Qt::Key_PageDown, 121}, {Qt::Key_Left, 123},
      {Qt::Key_Right, 124}, {Qt::Key_Down, 125},     {Qt::Key_Up, 126},
  };
  for (const auto& [key, code] : cases) {
    press(key, Qt::AltModifier);
    EXPECT_EQ(keys.back().keyCode, code);
    EXPECT_FALSE(keys.back().beginsWithLetterOrNumber);
  }
}

TEST_F(KeyMonitorTest, punctuationAndFunctionKeysBeginWithNoLetter) {
  listen();
  press(Qt::Key_Minus, Qt::AltModifier, "-");
  press(Qt::Key_F1, Qt::AltModifier);
  press(Qt::Key_Shift, Qt::ShiftModifier);
  for (const auto& key : keys) EXPECT_FALSE(key.beginsWithLetterOrNumber);
  press(Qt::Key_Adiaeresis, Qt::AltModifier, "ä");
  EXPECT_EQ(keys.back().charactersIgnoringModifiers, "Ä");
  EXPECT_TRUE(keys.back().beginsWithLetterOrNumber);
}

TEST_F(KeyMonitorTest, mayEndInsideItsOwnCall) {
  token = monitor.addLocalKeyDownMonitor([this](const ports::KeyDown& key) {
    keys.push_back(key);
    token.reset();
  });
  press(Qt::Key_K, Qt::AltModifier);
  press(Qt::Key_K, Qt::NoModifier, "k");
  EXPECT_EQ(keys.size(), 1u);
  EXPECT_EQ(control.text(), "k");
}

}  // namespace
}  // namespace vorli::ui
