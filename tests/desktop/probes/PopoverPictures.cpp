// vorli_popover_pictures FOLDER: writes a picture of every state of the popover on a plain grey desktop, at
// 1x and 2x, light and dark.

#include "tests/desktop/probes/PopoverStates.h"
#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPainter.h"
#include "ui/popover/TextStyle.h"

#include <QApplication>
#include <QDir>
#include <QFontInfo>
#include <QPainter>
#include <cstdio>
#include <cstdlib>

namespace vorli {
namespace {

using namespace ui;

constexpr int margin = 24, below = 40;

QImage pictureOf(const PopoverPicture& picture, PopoverPainter& popover, double pixelRatio) {
  const QSize size(270 + 2 * margin, 304 + margin + below);
  QImage window(size * pixelRatio, QImage::Format_ARGB32_Premultiplied);
  window.fill(Qt::transparent);
  {
    QPainter painter(&window);
    painter.scale(pixelRatio, pixelRatio);
    popover.paint(painter, QPointF(margin, margin), picture, PopoverPainter::Frame::shadow,
                  QRectF({0.0, 0.0}, QSizeF(size)), pixelRatio);
  }
  QImage desktop(window.size(), QImage::Format_RGB32);
  desktop.fill(picture.appearance == Appearance::dark ? 0x4A4D52 : 0xD5D8DB);
  QPainter(&desktop).drawImage(0, 0, window);
  return desktop;
}

// Puts all pictures of one kind beside each other, like a designer's sheet.
QImage sheetOf(const QList<QImage>& pictures, int columns) {
  const QSize size = pictures.front().size();
  const int rows = (static_cast<int>(pictures.size()) + columns - 1) / columns;
  QImage sheet(size.width() * columns, size.height() * rows, QImage::Format_RGB32);
  sheet.fill(pictures.front().pixel(0, 0));
  QPainter painter(&sheet);
  for (int i = 0; i < pictures.size(); ++i) {
    painter.drawImage(i % columns * size.width(), i / columns * size.height(), pictures[i]);
  }
  return sheet;
}

bool saveAll(const QDir& folder, const char* kind, const QList<PopoverState>& states, PopoverPainter& popover,
             double pixelRatio) {
  constexpr int columns = 7;
  const bool isDark = states.front().picture.appearance == Appearance::dark;
  const auto nameOf = [&](const QString& name) {
    return folder.filePath(QStringLiteral("%1-%2@%3x.png")
                               .arg(name, isDark ? QStringLiteral("dark") : QStringLiteral("light"))
                               .arg(pixelRatio));
  };
  QList<QImage> pictures;
  for (const auto& state : states) {
    pictures << pictureOf(state.picture, popover, pixelRatio);
    if (!pictures.back().save(nameOf(QStringLiteral("states/") + state.name))) return false;
  }
  return sheetOf(pictures, columns).save(nameOf(QStringLiteral("sheet-%1").arg(QLatin1String(kind))));
}

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  using namespace vorli;
  qunsetenv("DISPLAY");
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  const QDir folder(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
  if (argc != 2 || !folder.mkpath(QStringLiteral("states"))) {
    std::fputs("usage: vorli_popover_pictures FOLDER\n", stderr);
    return EXIT_FAILURE;
  }
  if (QFontInfo(ui::PopoverTextStyles::shared().headline.font).family() != QLatin1String("Fraunces 9pt")) {
    std::fputs("the program's fonts are not there\n", stderr);
    return EXIT_FAILURE;
  }
  ui::PopoverPainter popover;
  for (const auto appearance : {ui::Appearance::light, ui::Appearance::dark}) {
    for (const double pixelRatio : {1.0, 2.0}) {
      const bool isSaved = saveAll(folder, "states", popoverStates(appearance), popover, pixelRatio) &&
                           saveAll(folder, "polish", polishMoments(appearance), popover, pixelRatio) &&
                           saveAll(folder, "unfurl", unfurlMoments(appearance), popover, pixelRatio);
      if (!isSaved) return EXIT_FAILURE;
    }
  }
  return EXIT_SUCCESS;
}
