#include "ui/linux/MotionPreference.h"

#include "ui/linux/XSettings.h"

namespace vorli::ui {

MotionPreference::MotionPreference(ManagerSelections& selections)
    : selections_(selections), settings_(selections.subscribe([this] { update(); })) {
  reduced_ = derive();
}

bool MotionPreference::derive() const {
  const auto& published = selections_.published(ManagerSelections::Selection::settings);
  return xSettingsNumber(published, "Gtk/EnableAnimations") == 0;
}

void MotionPreference::update() {
  const bool reduced = derive();
  if (reduced == reduced_) return;
  reduced_ = reduced;
  changed_.deliver();
}

}  // namespace vorli::ui
