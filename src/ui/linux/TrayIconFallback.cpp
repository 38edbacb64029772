#include "ui/linux/TrayIconFallback.h"

#include "ui/status/StatusPicturePainter.h"
#include "ui/status/TrayClick.h"

#include <QApplication>
#include <QHelpEvent>
#include <QIconEngine>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWidget>

namespace vorli::ui {
namespace {

// Draws directly into the window at the size that the tray gives; nothing is scaled or cached.
class PictureEngine final : public QIconEngine {
 public:
  explicit PictureEngine(ports::StatusPicture picture) : picture_(std::move(picture)) {}

  void paint(QPainter* painter, const QRect& area, QIcon::Mode, QIcon::State) override {
    paintStatusPicture(*painter, area, picture_);
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode, QIcon::State) override {
    return QPixmap::fromImage(statusPictureImage(picture_, std::min(size.width(), size.height())));
  }
  QIconEngine* clone() const override { return new PictureEngine(picture_); }

 private:
  ports::StatusPicture picture_;
};

Qt::MouseButton buttonOf(QSystemTrayIcon::ActivationReason reason) {
  switch (reason) {
    case QSystemTrayIcon::Trigger:
    case QSystemTrayIcon::DoubleClick:
      return Qt::LeftButton;
    case QSystemTrayIcon::Context:
      return Qt::RightButton;
    case QSystemTrayIcon::MiddleClick:
      return Qt::MiddleButton;
    case QSystemTrayIcon::Unknown:
      break;
  }
  return Qt::NoButton;
}

}  // namespace

TrayIconFallback::TrayIconFallback(ClickHandler handler) : clickHandler_(std::move(handler)) {
  setPicture({});  // Qt warns about a tray icon without one
  icon_.show();
  adoptWindow();
}

TrayIconFallback::~TrayIconFallback() {
  icon_.hide();
}

void TrayIconFallback::setPicture(const ports::StatusPicture& picture) {
  icon_.setIcon(QIcon(new PictureEngine(picture)));
}

void TrayIconFallback::setTexts(const QString& title, const QString& sentence) {
  sentence_ = sentence;
  icon_.setToolTip(title + QLatin1Char('\n') + sentence);
  if (!window_) return;
  window_->setAccessibleName(title);
  window_->setAccessibleDescription(sentence);
}

// Watches the events of Qt's tray window, because Qt reports a click when the button goes down and without
// its modifiers.
void TrayIconFallback::adoptWindow() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (!window->inherits("QSystemTrayIconSys")) continue;
    window_ = window;
    window_->installEventFilter(this);
    return;
  }
  connect(&icon_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
    if (const auto click = trayClick(buttonOf(reason), Qt::NoModifier)) clickHandler_(*click, QCursor::pos());
  });
}

bool TrayIconFallback::eventFilter(QObject* watched, QEvent* event) {
  if (watched != window_) return false;
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
      return true;
    case QEvent::MouseButtonRelease: {
      const auto* mouse = static_cast<QMouseEvent*>(event);
      if (!window_->rect().contains(mouse->position().toPoint())) return true;
      if (const auto click = trayClick(mouse->button(), mouse->modifiers())) {
        clickHandler_(*click, mouse->globalPosition().toPoint());
      }
      return true;
    }
    default:
      return false;
  }
}

}  // namespace vorli::ui
