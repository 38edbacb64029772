#include "ui/windows/HelperStatusRow.h"

#include "ui/kit/GlassPillButton.h"
#include "ui/kit/QtText.h"
#include "ui/kit/SpokenName.h"

#include <QPainter>
#include <cmath>
#include <utility>

namespace vorli::ui {
namespace {

Tone toneOf(VorliSettingsView::HelperRow::Tone tone) {
  switch (tone) {
    case VorliSettingsView::HelperRow::Tone::lit:
      return Tone::lit;
    case VorliSettingsView::HelperRow::Tone::amber:
      return Tone::amber;
    case VorliSettingsView::HelperRow::Tone::red:
      return Tone::red;
    case VorliSettingsView::HelperRow::Tone::plain:
      break;
  }
  return Tone::plain;
}

}  // namespace

HelperStatusRow::HelperStatusRow(VorliSettingsView& view, Appearance appearance, QWidget* parent)
    : QWidget(parent),
      view_(view),
      palette_(WindowPalette::of(appearance)),
      button_(new GlassPillButton(qtText(VorliSettingsView::reinstallTitle), GlassPillButton::Role::plain,
                                  appearance, this)) {
  button_->setSymbol(VorliSettingsView::reinstallSymbol);
  connect(button_, &QAbstractButton::clicked, this, [this] { view_.reinstallHelper(); });
  face_.title = qtText(VorliSettingsView::helperTitle);
  setAccessibleName(face_.title);
  refresh();
}

HelperStatusRow::~HelperStatusRow() {
  view_.scheduler().cancel(spinTimer_);
}

void HelperStatusRow::refresh() {
  shown_ = view_.helperRow();
  face_.text = QString::fromStdString(shown_.text);
  face_.symbol = shown_.symbol;
  face_.tone = toneOf(shown_.tone);
  const bool works = shown_.button == VorliSettingsView::HelperRow::Button::reinstalling;
  button_->setText(qtText(works ? VorliSettingsView::reinstallingTitle : VorliSettingsView::reinstallTitle));
  button_->setSpinner(works ? std::optional(spinStep_) : std::nullopt);
  // Qt moves the focus away while the button is inactive; it returns unless the user has moved it since.
  if (works && window()->focusWidget() == button_) {
    button_->setEnabled(false);
    standIn_ = window()->focusWidget();
  }
  button_->setEnabled(!works);
  if (!works && standIn_ && window()->focusWidget() == std::exchange(standIn_, nullptr))
    button_->setFocus(Qt::TabFocusReason);
  button_->setVisible(shown_.button != VorliSettingsView::HelperRow::Button::none);
  button_->say(button_->text(), face_.text);
  setSpokenHint(*this, face_.text);
  resizeEvent(nullptr);
  update();
  if (spinTimer_ == 0) spin();
}

// Waits for the next step only while the spinner is visible.
void HelperStatusRow::spin() {
  spinTimer_ = 0;
  const bool isSeen = isVisible() && !window()->isMinimized();
  const auto seconds = isSeen ? view_.spinnerSeconds() : std::nullopt;
  if (!seconds) return;
  spinTimer_ = view_.scheduler().after(*seconds, [this] {
    ++spinStep_;
    if (shown_.button == VorliSettingsView::HelperRow::Button::reinstalling) button_->setSpinner(spinStep_);
    if (shown_.symbol.empty()) update(RowFace::tileIn(rect()).toAlignedRect());
    spin();
  });
}

void HelperStatusRow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (spinTimer_ == 0) spin();
}

double HelperStatusRow::buttonWidth() const {
  if (shown_.button == VorliSettingsView::HelperRow::Button::none) return 0.0;
  return button_->sizeHint().width() - 2.0 * GlassPillButton::ringMargin;
}

int HelperStatusRow::heightForWidth(int width) const {
  return static_cast<int>(std::ceil(face_.heightFor(width, buttonWidth())));
}

void HelperStatusRow::resizeEvent(QResizeEvent*) {
  const QSize size = button_->sizeHint();
  const int right = width() - static_cast<int>(RowFace::right) + GlassPillButton::ringMargin;
  button_->setGeometry(QRect(QPoint(right - size.width(), (height() - size.height()) / 2), size));
}

void HelperStatusRow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  face_.paint(painter, rect(), buttonWidth(), palette_, shown_.symbol.empty() ? spinStep_ : -1);
}

}  // namespace vorli::ui
