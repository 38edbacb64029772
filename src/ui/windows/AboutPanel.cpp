#include "ui/windows/AboutPanel.h"

#include "ui/kit/AppMark.h"
#include "ui/kit/LetterpressText.h"
#include "ui/kit/Typeface.h"

#include <QLabel>
#include <QPainter>
#include <utility>

namespace vorli::ui {
namespace {

constexpr QSize aboutSize{300, 252};
constexpr int aboutMarkTop = 40;
constexpr int aboutMarkSide = 96;
constexpr int aboutMarkMargin = 8;  // room for its shadow
constexpr int aboutNameTop = aboutMarkTop + aboutMarkSide + 16;
constexpr int aboutNameHeight = 36;
constexpr int aboutVersionTop = aboutNameTop + aboutNameHeight + 4;
constexpr int aboutVersionHeight = 18;

}  // namespace

AboutPanel::AboutPanel(const WindowSurroundings& surroundings, const QString& version)
    : PaperWindow(surroundings, Qt::Window, QStringLiteral("About Vorli"), CloseButton::shown) {
  setSheetSize(aboutSize);
  makeContent(version);
  followAppearance([this, version] { makeContent(version); });
}

void AboutPanel::makeContent(const QString& version) {
  mark_ = {};
  delete std::exchange(name_, nullptr);
  delete std::exchange(version_, nullptr);
  const QRect area = sheet();
  name_ = new LetterpressText(QStringLiteral("Vorli"), 30.0, appearance(), this);
  name_->setGeometry(area.x(), area.y() + aboutNameTop, area.width(), aboutNameHeight);
  name_->show();
  version_ = new QLabel(version, this);
  version_->setFont(geist(12.5));
  version_->setAlignment(Qt::AlignCenter);
  auto ink = version_->palette();
  ink.setColor(QPalette::WindowText, colours().meta);
  version_->setPalette(ink);
  version_->setGeometry(area.x(), area.y() + aboutVersionTop, area.width(), aboutVersionHeight);
  version_->show();
}

void AboutPanel::paintEvent(QPaintEvent* event) {
  PaperWindow::paintEvent(event);
  const double ratio = devicePixelRatioF();
  if (mark_.devicePixelRatio() != ratio || mark_.isNull()) {
    mark_ = appMarkImage(qRound(aboutMarkSide * ratio), qRound(aboutMarkMargin * ratio), colours());
    mark_.setDevicePixelRatio(ratio);
  }
  const QRect area = sheet();
  QPainter(this).drawImage(QPointF(area.x() + (area.width() - aboutMarkSide) / 2.0 - aboutMarkMargin,
                                   area.y() + aboutMarkTop - aboutMarkMargin),
                           mark_);
}

}  // namespace vorli::ui
