#include "ui/kit/PillChoice.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/MixedColour.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"

#include <QPainter>
#include <cmath>

namespace vorli::ui {
namespace {

constexpr int choiceHeight = 30;
constexpr int choiceInset = 3;
constexpr double choicePadding = 12.0;

class Pill final : public Control {
 public:
  Pill(const QString& text, Appearance appearance, QWidget* parent)
      : Control(SpokenRole::choice, appearance, parent) {
    setText(text);
    setCheckable(true);
    setAutoExclusive(true);
  }

  QSize sizeHint() const override {
    return {static_cast<int>(std::ceil(textWidth(text(), TextRole::button()) + 2.0 * choicePadding)),
            choiceHeight - 2 * choiceInset};
  }

 private:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF shape = rect();
    const double radius = shape.height() / 2.0;
    const auto& palette = colours();
    if (isChecked())
      paintPlate(painter, shape, radius, palette.pill.over(shape), palette.pillLine, palette.lip);
    else
      paintPlate(painter, shape, radius, fadedTo(palette.wash2, hover()), Qt::transparent);
    if (showsFocus()) {
      painter.setBrush(Qt::NoBrush);
      painter.setPen(QPen(palette.accent, 2.0));
      painter.drawRoundedRect(shape.adjusted(1.0, 1.0, -1.0, -1.0), radius - 1.0, radius - 1.0);
    }
    paintLine(painter, text(), TextRole::button(), shape,
              isChecked() ? palette.ink : mixed(palette.ink2, palette.ink, hover()), Qt::AlignHCenter);
  }
};

}  // namespace

PillChoice::PillChoice(const QStringList& words, const QString& spokenName, Appearance appearance,
                       QWidget* parent)
    : QWidget(parent), palette_(WindowPalette::of(appearance)) {
  setAccessibleName(spokenName);
  for (const QString& word : words) {
    auto* pill = new Pill(word, appearance, this);
    pill->say(word, spokenName);
    const int index = static_cast<int>(pills_.size());
    connect(pill, &QAbstractButton::clicked, this, [this, index] {
      if (handler_) handler_(index);
    });
    pills_.push_back(pill);
  }
}

int PillChoice::chosen() const {
  for (int i = 0; i < pills_.size(); ++i) {
    if (pills_[i]->isChecked()) return i;
  }
  return -1;
}

void PillChoice::choose(int index) {
  if (index >= 0 && index < pills_.size()) pills_[index]->setChecked(true);
}

QSize PillChoice::sizeHint() const {
  int width = 2 * choiceInset;
  for (const auto* pill : pills_) width += pill->sizeHint().width();
  return {width, choiceHeight};
}

void PillChoice::resizeEvent(QResizeEvent*) {
  int x = choiceInset;
  for (auto* pill : pills_) {
    pill->setGeometry(QRect(QPoint(x, choiceInset), pill->sizeHint()));
    x += pill->width();
  }
}

void PillChoice::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintPlate(painter, rect(), choiceHeight / 2.0, palette_.wash2, palette_.border);
}

}  // namespace vorli::ui
