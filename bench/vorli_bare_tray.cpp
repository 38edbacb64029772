// vorli_bare_tray: the least cost of a Qt program with a live icon in the tray. It shows a few ready pictures
// in turn, a new one every 15 seconds.

#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>
#include <vector>

namespace {

constexpr int pictures = 13;
constexpr int pictureSize = 22;
constexpr int periodMilliseconds = 15'000;

QIcon dial(int filled) {
  QPixmap pixmap(pictureSize, pictureSize);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(Qt::white, 3));
  painter.drawArc(QRectF(3, 3, pictureSize - 6, pictureSize - 6), 90 * 16,
                  -filled * 360 * 16 / (pictures - 1));
  painter.end();
  return QIcon(pixmap);
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  std::vector<QIcon> dials;
  for (int filled = 0; filled < pictures; ++filled) dials.push_back(dial(filled));
  std::size_t shown = 0;
  QSystemTrayIcon icon(dials[shown]);
  icon.show();
  QTimer timer;
  timer.setTimerType(Qt::VeryCoarseTimer);
  QObject::connect(&timer, &QTimer::timeout, [&] { icon.setIcon(dials[++shown % dials.size()]); });
  timer.start(periodMilliseconds);
  return QApplication::exec();
}
