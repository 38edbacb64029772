#include "ui/linux/GtkPreference.h"

#include <QSettings>
#include <QStandardPaths>

namespace vorli::ui {

GtkPreference GtkPreference::read(const QString& file) {
  const QSettings settings(file, QSettings::IniFormat);
  const auto value = [&settings](const char* key) {
    return settings.value(QStringLiteral("Settings/") + QLatin1String(key)).toString();
  };
  const auto says = [&value](const char* key, const char* number, const char* word) {
    const QString said = value(key);
    return said == QLatin1String(number) || said.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
  };
  return {.theme = value("gtk-theme-name"),
          .prefersDark = says("gtk-application-prefer-dark-theme", "1", "true"),
          .dropsAnimations = says("gtk-enable-animations", "0", "false"),
          .iconTheme = value("gtk-icon-theme-name")};
}

GtkPreference GtkPreference::ofThisUser() {
  return read(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
              QStringLiteral("/gtk-3.0/settings.ini"));
}

}  // namespace vorli::ui
