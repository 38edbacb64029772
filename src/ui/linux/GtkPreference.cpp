#include "ui/linux/GtkPreference.h"

#include <QSettings>
#include <QStandardPaths>

namespace vorli::ui {

GtkPreference GtkPreference::read(const QString& file) {
  const QSettings settings(file, QSettings::IniFormat);
  const auto value = [&settings](const char* key) {
    return settings.value(QStringLiteral("Settings/") + QLatin1String(key)).toString();
  };
  const QString dark = value("gtk-application-prefer-dark-theme");
  return {value("gtk-theme-name"),
          dark == QLatin1String("1") || dark.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0};
}

GtkPreference GtkPreference::ofThisUser() {
  return read(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
              QStringLiteral("/gtk-3.0/settings.ini"));
}

}  // namespace vorli::ui
