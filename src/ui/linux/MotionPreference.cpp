#include "ui/linux/MotionPreference.h"

#include "formats/XSettings.h"
#include "ui/kit/QtText.h"

#include <utility>

namespace vorli::ui {

MotionPreference::MotionPreference(ManagerSelections& selections, GtkPreference gtk)
    : selections_(selections), gtk_(std::move(gtk)), settings_(selections.subscribe([this] { update(); })) {
  reduced_ = derive();
}

bool MotionPreference::derive() const {
  const auto published = formats::xSettingsNumber(
      bytesOf(selections_.published(ManagerSelections::Selection::settings)), "Gtk/EnableAnimations");
  return published ? *published == 0 : gtk_.dropsAnimations;
}

void MotionPreference::update() {
  const bool reduced = derive();
  if (reduced == reduced_) return;
  reduced_ = reduced;
  changed_.deliver();
}

}  // namespace vorli::ui
