// vorli_bare_window OPENINGS: the least cost of a Qt program that opens and closes a window of the settings'
// size, frameless and in one flat colour. Prints its frames and, before each opening, "open bare MOMENT" in
// microseconds of the monotonic clock, and "end" when it is done.

#include "bench/PaintWatch.h"

#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr QSize bareWindowSize{960, 704};
constexpr QRect bareSheet{40, 28, 880, 620};
constexpr int settledMilliseconds = 1000;

class Sheet final : public QWidget {
 public:
  Sheet() : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint) {
    setWindowTitle(QStringLiteral("bare window"));
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_DeleteOnClose);
    setFixedSize(bareWindowSize);
  }

 private:
  void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(bareSheet, QColor(252, 249, 242)); }
};

void openAndClose(int openings) {
  if (openings == 0) {
    std::puts("end");
    std::fflush(stdout);
    return;
  }
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  std::printf("open bare %lld\n",
              static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(now).count()));
  const QPointer<QWidget> sheet = new Sheet;
  sheet->show();
  QTimer::singleShot(settledMilliseconds, qApp, [sheet, openings] {
    if (sheet) sheet->close();
    QTimer::singleShot(settledMilliseconds, qApp, [openings] { openAndClose(openings - 1); });
  });
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  const int openings = argc > 1 ? std::atoi(argv[1]) : 5;
  const vorli::bench::PaintWatch watch;
  QTimer::singleShot(settledMilliseconds, qApp, [openings] { openAndClose(openings); });
  return QApplication::exec();
}
