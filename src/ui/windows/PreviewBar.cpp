#include "ui/windows/PreviewBar.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/QtText.h"
#include "ui/kit/Typeface.h"

#include <QPainter>
#include <cmath>
#include <functional>

namespace vorli::ui {
namespace {

constexpr int previewHeight = 24, previewPadding = 5, previewLeft = 6, previewGap = 1;
constexpr double previewRadius = previewHeight / 2.0;

TextRole pillText() {
  return {geist(11.0), 16.0};
}

}  // namespace

class PreviewBar::Pill final : public Control {
 public:
  Pill(const QString& text, Appearance appearance, QWidget* parent, std::function<bool()> isPicked)
      : Control(SpokenRole::choice, appearance, parent), isPicked_(std::move(isPicked)) {
    setText(text);
    say(text);
  }

 private:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isPicked_() || isHovered()) {
      painter.setPen(Qt::NoPen);
      painter.setBrush(colours().wash);
      painter.drawRoundedRect(rect(), previewRadius, previewRadius);
    }
    paintLine(painter, text(), pillText(), rect(), showsFocus() ? colours().accent : colours().ink2,
              Qt::AlignHCenter);
  }

  const std::function<bool()> isPicked_;
};

PreviewBar::PreviewBar(PreviewPickerBar& bar, Appearance appearance, QWidget* parent) : QWidget(parent) {
  int left = previewLeft;
  for (const auto& choice : PreviewPickerBar::choices()) {
    const auto picked = [&bar, &choice] { return bar.isPicked(choice); };
    auto* pill = new Pill(qtText(choice.title), appearance, this, picked);
    connect(pill, &QAbstractButton::clicked, this, [this, &bar, &choice] {
      bar.pick(choice);
      update();
    });
    const int width = static_cast<int>(std::ceil(textWidth(pill->text(), pillText()))) + 2 * previewPadding;
    pill->setGeometry(left, (height - previewHeight) / 2, width, previewHeight);
    left += width + previewGap;
  }
}

}  // namespace vorli::ui
