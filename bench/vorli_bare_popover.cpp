// vorli_bare_popover: the least cost of a Qt program that opens a window at a click on its icon in the tray
// and paints a part of it ten times a second. It shows only one flat colour. With --watched it reports each
// frame.

#include "bench/PaintWatch.h"

#include <QApplication>
#include <QCursor>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QWidget>
#include <optional>

namespace {

constexpr QSize windowSize{318, 360};
constexpr QRect card{24, 16, 270, 240}, breathing{59, 16, 200, 196};
constexpr int millisecondsPerFrame = 100;
constexpr int iconSize = 22;

class Card final : public QWidget {
 public:
  Card() : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
    setWindowTitle(QStringLiteral("bare popover"));
    setAttribute(Qt::WA_TranslucentBackground);
    setFixedSize(windowSize);
    frames_.setInterval(millisecondsPerFrame);
    connect(&frames_, &QTimer::timeout, this, [this] { update(breathing); });
  }

  void toggle() {
    if (isVisible()) {
      frames_.stop();
      hide();
    } else {
      move(QCursor::pos() + QPoint(-windowSize.width() / 2, iconSize));
      show();
      frames_.start();
    }
  }

 private:
  void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(card, QColor(250, 247, 242)); }

  QTimer frames_;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  std::optional<vorli::bench::PaintWatch> watch;
  if (application.arguments().contains(QStringLiteral("--watched"))) watch.emplace();
  Card window;
  QPixmap picture(iconSize, iconSize);
  picture.fill(Qt::white);
  QSystemTrayIcon icon{QIcon(picture)};
  QObject::connect(&icon, &QSystemTrayIcon::activated, &window, [&window] { window.toggle(); });
  icon.show();
  return QApplication::exec();
}
