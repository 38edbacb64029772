#pragma once

#include "base/Animated.h"
#include "base/Scheduler.h"
#include "flows/VorliSettingsView.h"
#include "ui/kit/Control.h"
#include "ui/kit/RowFace.h"

namespace vorli::ui {

/// The row that shows the global hot key as key caps and records a new one. Its text reports a refusal.
class HotkeyRecorder final : public Control {
 public:
  HotkeyRecorder(VorliSettingsView& view, Appearance appearance, QWidget* parent);
  ~HotkeyRecorder() override;

  /// Shows the view's current state of the key.
  void refresh();

  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

 private:
  void paintEvent(QPaintEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void paintCaps(QPainter& painter, const QRectF& row) const;
  void paintPrompt(QPainter& painter, const QRectF& row, const QString& prompt) const;
  double plateWidth() const;
  void recordingChanged(bool isRecording);
  void pulse();

  VorliSettingsView& view_;
  RowFace face_;
  QList<QString> caps_;
  Animated<double> dotOpacity_;
  Scheduler::TimerId pulseTimer_ = 0;
  Subscription recording_;
  Subscription combo_;
};

}  // namespace vorli::ui
