#pragma once

#include <QString>

namespace vorli::ui {

/// Settings from the user's own file of the GTK toolkit. Without a settings daemon, as under a bare window
/// manager, it is the only place where a user can ask for dark windows or for no animations.
struct GtkPreference {
  QString theme;  // its name; empty when the file names none
  bool prefersDark = false;
  bool dropsAnimations = false;
  QString iconTheme = {};  // its name; empty when the file names none

  /// Returns an empty preference when the file does not exist.
  static GtkPreference read(const QString& file);
  static GtkPreference ofThisUser();
};

}  // namespace vorli::ui
