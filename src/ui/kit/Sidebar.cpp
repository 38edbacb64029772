#include "ui/kit/Sidebar.h"

#include "ui/kit/AppMark.h"
#include "ui/kit/Control.h"
#include "ui/kit/FocusRing.h"
#include "ui/kit/LetterpressText.h"
#include "ui/kit/MixedColour.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"
#include "ui/kit/Symbol.h"

#include <QPainter>
#include <QPainterPath>

namespace vorli::ui {
namespace {

constexpr int tabLeft = 12, firstTabTop = 120, tabHeight = 36, tabGap = 4;
constexpr int sidebarMarkLeft = 20, sidebarMarkTop = 54, sidebarMarkSide = 36, sidebarMarkMargin = 6,
              sidebarNameGap = 12;
constexpr int sidebarRingMargin = 4;
constexpr double tabRadius = 10.0, plateSeconds = 0.22;
constexpr double sidebarWindowRadius = 14.0;

class SidebarTab final : public Control {
 public:
  SidebarTab(const Sidebar::Tab& tab, Appearance appearance, QWidget* parent)
      : Control(SpokenRole::tab, appearance, parent), symbol_(tab.symbol) {
    setText(tab.label);
    setCheckable(true);
    say(tab.spokenName, tab.hint);
  }

 private:
  // The selected tab stays selected when it is pressed again.
  void nextCheckState() override { setChecked(true); }

  void paintEvent(QPaintEvent*) override {
    constexpr double symbolSide = 18.0, left = 10.0, gap = 10.0;
    const auto& palette = colours();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF plate =
        QRectF(rect()).adjusted(sidebarRingMargin, sidebarRingMargin, -sidebarRingMargin, -sidebarRingMargin);
    if (!isChecked()) paintPlate(painter, plate, tabRadius, fadedTo(palette.wash2, hover()), Qt::transparent);
    if (showsFocus()) paintFocusRing(painter, plate, tabRadius, palette);
    const QColor ink = isChecked() ? palette.ink : mixed(palette.ink2, palette.ink, hover());
    const QRectF symbol(plate.left() + left, plate.center().y() - symbolSide / 2.0, symbolSide, symbolSide);
    paintSymbol(painter, symbol_, symbol, isChecked() ? palette.accent : ink);
    paintLines(painter, text(), TextRole::tab(), plate.adjusted(left + symbolSide + gap, 0.0, -left, 0.0),
               ink);
  }

  const std::string_view symbol_;
};

}  // namespace

Sidebar::Sidebar(const QList<Tab>& tabs, Appearance appearance, QWidget* parent,
                 std::function<void(int)> chosen)
    : QWidget(parent), palette_(WindowPalette::of(appearance)) {
  auto* name = new LetterpressText(QStringLiteral("Vorli"), 23.0, appearance, this);
  name->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  name->setGeometry(sidebarMarkLeft + sidebarMarkSide + sidebarNameGap, sidebarMarkTop, 120, sidebarMarkSide);
  for (const Tab& tab : tabs) {
    auto* control = new SidebarTab(tab, appearance, this);
    const int index = static_cast<int>(tabs_.size());
    control->setGeometry(
        tabLeft - sidebarRingMargin, firstTabTop + index * (tabHeight + tabGap) - sidebarRingMargin,
        sidebarWidth - 2 * tabLeft + 2 * sidebarRingMargin, tabHeight + 2 * sidebarRingMargin);
    connect(control, &QAbstractButton::clicked, this, [chosen, index] { chosen(index); });
    tabs_.push_back(control);
  }
}

void Sidebar::select(int index) {
  for (int i = 0; i < tabs_.size(); ++i) tabs_[i]->setChecked(i == index);
  if (plate_.target() < 0.0) return plate_.jumpTo(index);
  plate_.moveTo(index, Animation::timingCurve(windowEaseOut, plateSeconds));
}

void Sidebar::resizeEvent(QResizeEvent*) {
  ground_ = {};
}

QPixmap Sidebar::drawGround() const {
  constexpr double dialRadius = 120.0, dialRight = 48.0, dialUp = 24.0;
  const double ratio = devicePixelRatioF();
  QPixmap ground(size() * ratio);
  ground.setDevicePixelRatio(ratio);
  ground.fill(Qt::transparent);
  QPainter painter(&ground);
  painter.setRenderHint(QPainter::Antialiasing);
  // Rounded at the left like the sheet, and square at the right.
  QPainterPath shape;
  shape.addRoundedRect(QRectF(rect()).adjusted(0.0, 0.0, 2.0 * sidebarWindowRadius, 0.0), sidebarWindowRadius,
                       sidebarWindowRadius);
  painter.setClipPath(shape);
  painter.fillRect(rect(), palette_.side.over(rect()));
  painter.fillRect(QRectF(width() - 1.0, 0.0, 1.0, height()), palette_.divider);
  painter.setOpacity(static_cast<double>(palette_.motifOpacity));
  paintMarkDial(painter, {dialRight, height() - dialUp}, {dialRadius, 0.62, 0.93, 19.0}, litTicks(palette_));
  painter.setOpacity(1.0);
  QImage mark = appMarkImage(qRound(sidebarMarkSide * ratio), qRound(sidebarMarkMargin * ratio), palette_);
  mark.setDevicePixelRatio(ratio);
  painter.drawImage(QPointF(sidebarMarkLeft - sidebarMarkMargin, sidebarMarkTop - sidebarMarkMargin), mark);
  return ground;
}

void Sidebar::paintEvent(QPaintEvent*) {
  if (ground_.isNull() || ground_.devicePixelRatio() != devicePixelRatioF()) ground_ = drawGround();
  QPainter painter(this);
  painter.drawPixmap(0, 0, ground_);
  if (plate_.target() < 0.0) return;
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF plate(tabLeft, firstTabTop + plate_.shown() * (tabHeight + tabGap),
                     sidebarWidth - 2.0 * tabLeft, tabHeight);
  paintSmallShadow(painter, plate, tabRadius, palette_.pillShadow);
  paintPlate(painter, plate, tabRadius, palette_.pill.over(plate), palette_.pillLine, palette_.lip);
}

}  // namespace vorli::ui
