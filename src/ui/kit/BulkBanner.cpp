#include "ui/kit/BulkBanner.h"

#include "ui/kit/GlassPillButton.h"
#include "ui/kit/SpokenName.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace vorli::ui {
namespace {

constexpr double bannerLeastHeight = 60.0;

}  // namespace

BulkBanner::BulkBanner(Kind kind, const RowFace& face, const QString& button, Appearance appearance,
                       QWidget* parent, const std::function<void()>& press)
    : QWidget(parent), palette_(WindowPalette::of(appearance)), face_(face) {
  using Role = GlassPillButton::Role;
  button_ =
      new GlassPillButton(button, kind == Kind::plain ? Role::plain : Role::destructive, appearance, this);
  connect(button_, &QAbstractButton::clicked, this, [press] { press(); });
  setFace(face);
}

void BulkBanner::setFace(const RowFace& face) {
  face_ = face;
  setSpokenName(*this, face.title);
  setSpokenHint(*this, face.text);
  button_->say(button_->text());
  update();
}

double BulkBanner::buttonWidth() const {
  return button_->sizeHint().width() - 2.0 * GlassPillButton::ringMargin;
}

int BulkBanner::heightForWidth(int width) const {
  return static_cast<int>(
      std::ceil(std::max(bannerLeastHeight, face_.heightFor(width, buttonWidth()) + 2.0)));
}

void BulkBanner::resizeEvent(QResizeEvent*) {
  const QSize size = button_->sizeHint();
  const int right = width() - static_cast<int>(RowFace::right) + GlassPillButton::ringMargin;
  button_->setGeometry(QRect(QPoint(right - size.width(), (height() - size.height()) / 2), size));
}

void BulkBanner::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintPlate(painter, rect(), cardRadius, palette_.wash2, palette_.border);
  face_.paint(painter, rect(), buttonWidth(), palette_);
}

}  // namespace vorli::ui
