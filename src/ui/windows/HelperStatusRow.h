#pragma once

#include "base/Scheduler.h"
#include "flows/VorliSettingsView.h"
#include "ui/kit/RowFace.h"

#include <QWidget>

namespace vorli::ui {

class GlassPillButton;

/// The row that shows the state of the background helper and offers to install it again.
class HelperStatusRow final : public QWidget {
 public:
  HelperStatusRow(VorliSettingsView& view, Appearance appearance, QWidget* parent);
  ~HelperStatusRow() override;

  /// Shows the view's current state of the helper.
  void refresh();

  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

 private:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  double buttonWidth() const;
  void spin();

  VorliSettingsView& view_;
  const WindowPalette& palette_;
  VorliSettingsView::HelperRow shown_;
  RowFace face_;
  GlassPillButton* button_;
  QWidget* standIn_ = nullptr;  // has the focus while the button is inactive; only compared, never used
  Scheduler::TimerId spinTimer_ = 0;
  int spinStep_ = 0;
};

}  // namespace vorli::ui
