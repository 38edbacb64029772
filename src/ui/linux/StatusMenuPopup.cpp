#include "ui/linux/StatusMenuPopup.h"

#include "ui/linux/StatusMenuStyle.h"

#include <QMenu>
#include <QPainterPath>
#include <QRegion>

namespace vorli::ui {
namespace {

QString rowText(const ports::MenuRow& row) {
  auto text = QString::fromStdString(row.title);
  text.replace(QLatin1Char('&'), QLatin1String("&&"));  // a single one marks an access key
  if (row.keyEquivalent.empty()) return text;
  return text + QStringLiteral("\tCtrl+") + QString::fromStdString(row.keyEquivalent).toUpper();
}

// A menu that goes when it has closed, and takes its style with it.
class StatusMenuPopup final : public QMenu {
 public:
  explicit StatusMenuPopup(Appearance appearance) : style_(appearance) { setStyle(&style_); }

  ~StatusMenuPopup() override { setStyle(nullptr); }

  void cutCorners() {
    QPainterPath outline;
    outline.addRoundedRect(QRectF({}, QSizeF(sizeHint())), StatusMenuStyle::cornerRadius,
                           StatusMenuStyle::cornerRadius);
    setMask(QRegion(outline.toFillPolygon().toPolygon()));
  }

 private:
  StatusMenuStyle style_;
};

}  // namespace

void showStatusMenu(Scheduler& scheduler, std::vector<ports::MenuRow> rows, QPoint point,
                    Appearance appearance, Compositing compositing) {
  auto* menu = new StatusMenuPopup(appearance);
  for (auto& row : rows) {
    if (row.kind == ports::MenuRow::Kind::separator) {
      menu->addSeparator();
      continue;
    }
    auto* action = menu->addAction(rowText(row));
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
  menu->popup(point);
}

}  // namespace vorli::ui
