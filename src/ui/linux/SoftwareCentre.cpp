#include "ui/linux/SoftwareCentre.h"

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <array>

namespace vorli::ui {

namespace {

struct Centre {
  const char* program;
  const char* arguments;
};

constexpr std::array centres{
    Centre{"gnome-software", "--mode=updates"},
    Centre{"plasma-discover", "--mode update"},
    Centre{"update-manager", ""},
    Centre{"mintupdate", ""},
    Centre{"pamac-manager", "--updates"},
    Centre{"gpk-update-viewer", ""},
};

}  // namespace

bool openSoftwareCentreOnUpdates() {
  for (const auto& centre : centres) {
    const QString program = QStandardPaths::findExecutable(QLatin1String(centre.program));
    if (program.isEmpty()) continue;
    const auto arguments = QString::fromLatin1(centre.arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (QProcess::startDetached(program, arguments)) return true;
  }
  return false;
}

}  // namespace vorli::ui
