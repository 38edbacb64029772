#pragma once

#include <QString>

namespace vorli::ui {

/// What the user's own settings file of the GTK toolkit says. Where no settings daemon runs, as under a bare
/// window manager, it is the one place at which a user has the windows dark, or still.
struct GtkPreference {
  QString theme;  // its name; empty when the file names none
  bool prefersDark = false;
  bool dropsAnimations = false;

  /// Says nothing when there is no such file.
  static GtkPreference read(const QString& file);
  static GtkPreference ofThisUser();
};

}  // namespace vorli::ui
