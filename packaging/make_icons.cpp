// make_icons FOLDER: the application's icon in the sizes of the hicolor theme, drawn by the program's own
// painter.
#include "ui/kit/AppMark.h"

#include <QDir>
#include <QImage>
#include <cstdio>

int main(int count, char** arguments) {
  if (count != 2) return 64;
  for (const int side : {16, 22, 24, 32, 48, 64, 96, 128, 256, 512}) {
    const QString folder =
        QStringLiteral("%1/hicolor/%2x%2/apps").arg(QString::fromLocal8Bit(arguments[1])).arg(side);
    const QString file = folder + QStringLiteral("/com.kv.vorli.png");
    // Small icons need every pixel; the others leave room for the shadow.
    const int margin = side < 48 ? 0 : side / 16;
    const auto& palette = vorli::ui::WindowPalette::of(vorli::ui::Appearance::light);
    if (!QDir().mkpath(folder) || !vorli::ui::appMarkImage(side - 2 * margin, margin, palette).save(file)) {
      std::fprintf(stderr, "make_icons: %s cannot be written\n", qPrintable(file));
      return 1;
    }
  }
  return 0;
}
