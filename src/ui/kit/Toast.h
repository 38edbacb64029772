#pragma once

#include "ui/kit/GlassPillButton.h"
#include "ui/kit/Plates.h"

#include <QPixmap>
#include <QWidget>
#include <functional>
#include <string_view>

namespace vorli::ui {

/// A notice that floats over a page for a while, with one button.
class Toast final : public QWidget {
 public:
  struct Words {
    std::string_view symbol;  // must outlive the toast
    Tone tone = Tone::plain;  // lit, amber or red; plain is a warning sign
    QString text;
    QString name;  // emphasised at the end of the text
    QString button;
  };

  Toast(const Words& words, GlassPillButton::Role role, Appearance appearance, QWidget* parent,
        const std::function<void()>& press);

  GlassPillButton& button() { return *button_; }

  /// Fades the toast; 1 shows it fully.
  void setPresence(double share);

  /// Size with the room for the shadow around the plate.
  QSize sizeHint() const override;

  static constexpr QMargins shadowMargins{28, 18, 28, 38};
  static constexpr double greatestWidth = 568.0;

 private:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  QSizeF textSize() const;
  QRectF plate() const { return QRectF(rect().marginsRemoved(shadowMargins)); }
  void drawShadow();

  const Words words_;
  const WindowPalette& palette_;
  GlassPillButton* button_;
  QPixmap shadow_;
};

}  // namespace vorli::ui
