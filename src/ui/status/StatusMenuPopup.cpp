#include "ui/status/StatusMenuPopup.h"

#include "ui/status/StatusMenuStyle.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QScreen>

namespace vorli::ui {
namespace {

QString rowTitle(const ports::MenuRow& row) {
  auto title = QString::fromStdString(row.title);
  return title.replace(QLatin1Char('&'), QLatin1String("&&"));  // a single one marks an access key
}

QString shortcutText(const ports::MenuRow& row) {
  if (row.keyEquivalent.empty()) return {};
  return QStringLiteral("Ctrl+") + QString::fromStdString(row.keyEquivalent).toUpper();
}

// Returns the corner of a menu below an item in the upper half of its screen, else above it. Qt keeps the
// menu on the screen.
QPoint cornerBeside(const QRect& item, QSize menu) {
  const auto* screen = QGuiApplication::screenAt(item.center());
  const bool below = !screen || item.center().y() < screen->geometry().center().y();
  return {item.left(), below ? item.bottom() + 1 : item.top() - menu.height()};
}

// A menu that deletes itself and its style when it has closed.
class StatusMenuPopup final : public QMenu {
 public:
  explicit StatusMenuPopup(Appearance appearance) : style_(appearance) { setStyle(&style_); }

  ~StatusMenuPopup() override { setStyle(nullptr); }

  void cutCorners() {
    QBitmap shape(sizeHint());
    shape.clear();
    QPainter painter(&shape);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::color1);
    painter.drawRoundedRect(shape.rect(), StatusMenuStyle::cornerRadius, StatusMenuStyle::cornerRadius);
    painter.end();
    setMask(shape);
  }

 private:
  StatusMenuStyle style_;
};

}  // namespace

void showStatusMenu(Scheduler& scheduler, std::vector<ports::MenuRow> rows, const QRect& item,
                    Appearance appearance, Compositing compositing) {
  auto* menu = new StatusMenuPopup(appearance);
  for (auto& row : rows) {
    if (row.kind == ports::MenuRow::Kind::separator) {
      menu->addSeparator();
      continue;
    }
    auto* action = menu->addAction(rowTitle(row));
    action->setData(shortcutText(row));
    action->setEnabled(static_cast<bool>(row.action));
    QObject::connect(action, &QAction::triggered, menu,
                     [&scheduler, act = std::move(row.action)] { scheduler.post(act); });
  }
  menu->setObjectName(QStringLiteral("statusMenu"));
  menu->setAttribute(Qt::WA_DeleteOnClose);
  if (compositing == Compositing::present) {
    menu->setAttribute(Qt::WA_TranslucentBackground);
  } else {
    menu->cutCorners();
  }
  menu->popup(cornerBeside(item, menu->sizeHint()));
}

}  // namespace vorli::ui
