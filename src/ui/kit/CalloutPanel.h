#pragma once

#include "ui/kit/WindowPalette.h"

#include <QWidget>
#include <functional>

namespace vorli::ui {

class GlassPillButton;

/// A panel below a row: a heading, a sentence and two answers. A callout recommends something; a confirmation
/// asks before something is done, takes the focus on its harmless answer, and takes Escape for that answer.
class CalloutPanel final : public QWidget {
 public:
  enum class Kind { callout, confirmation, destructiveConfirmation };
  struct Words {
    QString heading, body, accept, refuse;
  };

  CalloutPanel(Kind kind, const Words& words, Appearance appearance, QWidget* parent,
               const std::function<void()>& accept, const std::function<void()>& refuse);

  GlassPillButton& acceptButton() { return *accept_; }
  GlassPillButton& refuseButton() { return *refuse_; }

  /// Fades the panel with its buttons; 1 shows it fully. Does not use a graphics effect of Qt: a faint row
  /// has one already, and they do not nest.
  void setPresence(double share);

  /// Ignores all further presses, whether by pointer, keyboard or assistive tools: an answered panel stays
  /// visible while it closes.
  void stopAnswering();

  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

 private:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  double textsHeight(double width) const;

  const Kind kind_;
  const Words words_;
  const WindowPalette& palette_;
  GlassPillButton* accept_;
  GlassPillButton* refuse_;
  double presence_ = 1.0;
};

}  // namespace vorli::ui
