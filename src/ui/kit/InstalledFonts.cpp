#include "ui/kit/InstalledFonts.h"

#include "base/Logger.h"

#include <QCoreApplication>
#include <QDir>
#include <QFontDatabase>
#include <array>

namespace vorli::ui {
namespace {

constexpr Logger fontLog{logSubsystem, "fonts"};

// Font folders relative to the program's folder: those of an installation and of a bundle, and those that
// set-up fetches for a build tree.
constexpr std::array folders{"../share/vorli/fonts", "../Resources/fonts", "../../fonts"};

int loadFrom(const QDir& folder) {
  int loaded = 0;
  for (const QString& face : folder.entryList({QStringLiteral("*.ttf")}, QDir::Files)) {
    if (QFontDatabase::addApplicationFont(folder.filePath(face)) >= 0) ++loaded;
  }
  return loaded;
}

}  // namespace

void loadInstalledFonts() {
  static const bool loaded = [] {
    const QDir program(QCoreApplication::applicationDirPath());
    for (const char* folder : folders) {
      if (loadFrom(QDir(program.filePath(QString::fromLatin1(folder)))) > 0) return true;
    }
    fontLog.info("No fonts installed with the program; using the system's");
    return false;
  }();
  static_cast<void>(loaded);
}

}  // namespace vorli::ui
