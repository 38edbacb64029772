#include "ui/windows/HotkeyRecorder.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/MixedColour.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/QtText.h"
#include "ui/kit/SettingsCard.h"

#include <QPainter>
#include <cmath>
#include <utility>

namespace vorli::ui {
namespace {

constexpr double plateHeight = 36.0, plateRadius = 12.0, plateReach = 6.0;
constexpr double capSide = 28.0, capGap = 5.0;
constexpr double promptPadding = 14.0, promptGap = 10.0, recordDotSide = 8.0, recordHaloReach = 4.0;
constexpr int ghostCaps = 3;

double capsWidth(const QList<QString>& caps) {
  if (caps.empty()) return ghostCaps * capSide + (ghostCaps - 1) * capGap;
  double width = -capGap;
  for (const QString& cap : caps) width += keyCapWidth(cap) + capGap;
  return width;
}

QString promptOf(VorliSettingsView& view) {
  const auto prompt = view.hotkeyRow().prompt();
  return prompt ? qtText(*prompt) : QString();
}

constexpr double pulseSeconds = 0.9, faintestDot = 0.35, pulseFrameSeconds = 1.0 / 15.0;

}  // namespace

HotkeyRecorder::HotkeyRecorder(VorliSettingsView& view, Appearance appearance, QWidget* parent)
    : Control(SpokenRole::button, appearance, parent), view_(view), dotOpacity_(view.scheduler(), 1.0) {
  face_.symbol = VorliSettingsView::hotkeySymbol;
  face_.title = qtText(VorliSettingsView::hotkeyTitle);
  connect(this, &QAbstractButton::clicked, this, [this] {
    setFocus(Qt::OtherFocusReason);  // a click does not set it, and losing it ends the recording
    view_.hotkeyRow().startRecording();
  });
  recording_ =
      view_.hotkeyRow().isRecording.subscribe([this](bool isRecording) { recordingChanged(isRecording); });
  combo_ = view_.hotkeyCombo().subscribeToChanges([this](const std::string&) { refresh(); });
}

HotkeyRecorder::~HotkeyRecorder() {
  view_.scheduler().cancel(pulseTimer_);
}

void HotkeyRecorder::recordingChanged(bool isRecording) {
  refresh();
  view_.scheduler().cancel(std::exchange(pulseTimer_, 0));
  dotOpacity_ = 1.0;
  if (!isRecording || view_.isMotionReduced()) return;
  withAnimation(Animation::easeInOut(pulseSeconds).repeatedForever(Animation::Reversal::autoreverse),
                [this] { dotOpacity_ = faintestDot; });
  pulse();
}

void HotkeyRecorder::pulse() {
  update();
  pulseTimer_ = view_.scheduler().after(pulseFrameSeconds, [this] { pulse(); });
}

void HotkeyRecorder::refresh() {
  auto& row = view_.hotkeyRow();
  caps_.clear();
  for (const auto& pill : row.pills()) caps_.push_back(qtText(pill));
  face_.text = qtText(view_.hotkeySubtitle());
  face_.tone = view_.isHotkeyRefused() ? Tone::amber : caps_.empty() ? Tone::plain : Tone::lit;
  QString hint = qtText(row.accessibilityHint());
  if (view_.isHotkeyRefused()) hint = face_.text + QStringLiteral(" ") + hint;
  say(face_.title, hint, QString::fromStdString(row.accessibilityValue()));
  update();
}

double HotkeyRecorder::plateWidth() const {
  const QString prompt = promptOf(view_);
  if (prompt.isEmpty()) return capsWidth(caps_) + 2.0 * plateReach;
  return 2.0 * promptPadding + recordDotSide + promptGap + std::ceil(textWidth(prompt, TextRole::button()));
}

int HotkeyRecorder::heightForWidth(int width) const {
  return static_cast<int>(std::ceil(face_.heightFor(width, plateWidth() - plateReach)));
}

// Ends a recording: an invisible recorder must not swallow the keys.
void HotkeyRecorder::hideEvent(QHideEvent* event) {
  view_.hotkeyRow().stopRecording();
  Control::hideEvent(event);
}

void HotkeyRecorder::focusOutEvent(QFocusEvent* event) {
  view_.hotkeyRow().stopRecording();
  Control::focusOutEvent(event);
}

void HotkeyRecorder::paintCaps(QPainter& painter, const QRectF& row) const {
  double x = row.right() - RowFace::right - capsWidth(caps_);
  const double top = row.center().y() - capSide / 2.0;
  if (caps_.empty()) {
    for (int i = 0; i < ghostCaps; ++i)
      paintGhostCap(painter, QRectF(x + i * (capSide + capGap), top, capSide, capSide), colours());
    return;
  }
  for (const QString& cap : caps_) {
    const double width = keyCapWidth(cap);
    paintKeyCap(painter, QRectF(x, top, width, capSide), cap, colours());
    x += width + capGap;
  }
}

void HotkeyRecorder::paintPrompt(QPainter& painter, const QRectF& plate, const QString& prompt) const {
  const auto& palette = colours();
  painter.setBrush(palette.calmWash);
  painter.setPen(QPen(palette.accent, 1.5));
  painter.drawRoundedRect(plate.adjusted(0.75, 0.75, -0.75, -0.75), plateRadius, plateRadius);
  QRectF dot(plate.left() + promptPadding, plate.center().y() - recordDotSide / 2.0, recordDotSide,
             recordDotSide);
  painter.setPen(Qt::NoPen);
  painter.setBrush(palette.calmWash);
  painter.drawEllipse(dot.adjusted(-recordHaloReach, -recordHaloReach, recordHaloReach, recordHaloReach));
  painter.setBrush(palette.accent);
  painter.setOpacity(dotOpacity_.shown());
  painter.drawEllipse(dot);
  painter.setOpacity(1.0);
  paintLine(painter, prompt, TextRole::button(),
            plate.adjusted(promptPadding + recordDotSide + promptGap, 0.0, -promptPadding + 1.0, 0.0),
            palette.accentInk);
}

void HotkeyRecorder::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF row = rect();
  const double width = plateWidth();
  face_.paint(painter, row, width - plateReach, colours());
  const QRectF plate(row.right() - RowFace::right + plateReach - width, row.center().y() - plateHeight / 2.0,
                     width, plateHeight);
  const QString prompt = promptOf(view_);
  if (!prompt.isEmpty()) {
    paintPrompt(painter, plate, prompt);
  } else {
    if (hover() > 0.0) {
      paintPlate(painter, plate, plateRadius, fadedTo(colours().wash2, hover()),
                 fadedTo(colours().border, hover()));
    }
    paintCaps(painter, row);
  }
  if (showsFocus() && prompt.isEmpty()) paintFocusRing(painter, plate.adjusted(2, 2, -2, -2), 9.0, colours());
}

}  // namespace vorli::ui
