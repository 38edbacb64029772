#pragma once

#include "ui/kit/FollowsPointer.h"
#include "ui/kit/SpokenButton.h"
#include "ui/kit/WindowPalette.h"

namespace vorli::ui {

/// Base of all controls in the windows: a ring for keyboard focus, Return as well as Space, hover, and name,
/// hint, value and role for assistive tools.
class Control : public FollowsPointer<SpokenButton> {
 public:
  enum class SpokenRole { button, link, toggle, tab, choice };

  Control(SpokenRole role, Appearance appearance, QWidget* parent);

  SpokenRole spokenRole() const { return role_; }

  Appearance appearance() const { return appearance_; }

 protected:
  const WindowPalette& colours() const { return palette_; }
  /// True while the control has the focus and got it by keyboard.
  bool showsFocus() const { return showsFocus_ && hasFocus(); }

  void focusInEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  const SpokenRole role_;
  const Appearance appearance_;
  const WindowPalette& palette_;
  bool showsFocus_ = false;
};

}  // namespace vorli::ui
