#pragma once

#include "ports/StatusItem.h"

namespace vorli::fakes {

/// A status item that a test looks at and clicks on.
class StatusItem final : public ports::StatusItem {
 public:
  bool create() override {
    ++creations;
    created = buttonAvailable;
    return created;
  }
  bool hasButton() const override { return created; }
  void setClickHandler(std::function<void(const ports::StatusClick&)> handler) override {
    clickHandler = std::move(handler);
  }
  void setMenuProvider(std::function<std::vector<ports::MenuRow>()> provider) override {
    menuProvider = std::move(provider);
  }
  void showMenu(std::vector<ports::MenuRow> rows) override { shownMenus.push_back(std::move(rows)); }
  void setToolTip(const std::string& text) override { toolTip = text; }
  void setAccessibilityLabel(const std::string& text) override { accessibilityLabel = text; }
  void setAccessibilityValue(const std::string& text) override { accessibilityValue = text; }
  void setPicture(const ports::StatusPicture& picture) override { pictures.push_back(picture); }
  bool hasDarkAppearance() const override { return dark; }
  void setAppearanceHandler(std::function<void()> handler) override {
    appearanceHandler = std::move(handler);
  }

  void click(ports::StatusClick::Button button = ports::StatusClick::Button::left,
             ports::StatusClick::Control control = ports::StatusClick::Control::up) {
    clickHandler({button, control});
  }
  void setDark(bool nowDark) {
    dark = nowDark;
    appearanceHandler();
  }
  /// Chooses the row with that title in the last menu; returns false if there is none.
  bool choose(const std::string& title) {
    if (shownMenus.empty()) return false;
    for (const auto& row : shownMenus.back()) {
      if (row.title != title || !row.action) continue;
      row.action();
      return true;
    }
    return false;
  }

  bool buttonAvailable = true;
  bool created = false;
  bool dark = false;
  int creations = 0;
  std::string toolTip, accessibilityLabel, accessibilityValue;
  std::vector<ports::StatusPicture> pictures;
  std::vector<std::vector<ports::MenuRow>> shownMenus;
  std::function<void(const ports::StatusClick&)> clickHandler;
  std::function<std::vector<ports::MenuRow>()> menuProvider;
  std::function<void()> appearanceHandler;
};

}  // namespace vorli::fakes
