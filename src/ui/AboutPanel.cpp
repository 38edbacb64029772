#include "ui/AboutPanel.h"

#include "ui/AppMark.h"
#include "ui/LetterpressText.h"
#include "ui/Typeface.h"

#include <QPainter>

namespace vorli::ui {
namespace {

constexpr QSize panelSize{300, 252};
constexpr int markTop = 40;
constexpr int markSide = 96;
constexpr int markMargin = 8;  // of its shadow
constexpr int nameTop = markTop + markSide + 16;
constexpr int nameHeight = 36;
constexpr int versionTop = nameTop + nameHeight + 4;
constexpr int versionHeight = 18;

}  // namespace

AboutPanel::AboutPanel(const WindowSurroundings& surroundings, const QString& version)
    : PaperWindow(surroundings, Qt::Window, QStringLiteral("About Vorli"), CloseButton::shown) {
  setSheetSize(panelSize);
  const QRect area = sheet();
  auto* name = new LetterpressText(QStringLiteral("Vorli"), 30.0, appearance(), this);
  name->setGeometry(area.x(), area.y() + nameTop, area.width(), nameHeight);
  auto* versionLine = new QLabel(version, this);
  versionLine->setFont(geist(12.5));
  versionLine->setAlignment(Qt::AlignCenter);
  auto ink = versionLine->palette();
  ink.setColor(QPalette::WindowText, colours().meta);
  versionLine->setPalette(ink);
  versionLine->setGeometry(area.x(), area.y() + versionTop, area.width(), versionHeight);
}

void AboutPanel::paintEvent(QPaintEvent* event) {
  PaperWindow::paintEvent(event);
  const double ratio = devicePixelRatioF();
  if (mark_.devicePixelRatio() != ratio || mark_.isNull()) {
    mark_ = appMarkImage(qRound(markSide * ratio), qRound(markMargin * ratio), colours());
    mark_.setDevicePixelRatio(ratio);
  }
  const QRect area = sheet();
  QPainter(this).drawImage(
      QPointF(area.x() + (area.width() - markSide) / 2.0 - markMargin, area.y() + markTop - markMargin),
      mark_);
}

}  // namespace vorli::ui
