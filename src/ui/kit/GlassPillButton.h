#pragma once

#include "ui/kit/Control.h"

#include <optional>
#include <string_view>

namespace vorli::ui {

/// The capsule-shaped button of all windows.
class GlassPillButton final : public Control {
 public:
  enum class Role { plain, primary, destructive, quiet };
  enum class Size { regular, toast, large };

  GlassPillButton(const QString& text, Role role, Appearance appearance, QWidget* parent,
                  Size size = Size::regular);

  /// Shows a symbol before the text; must outlive the button.
  void setSymbol(std::string_view name);
  /// Shows a spinner before the text instead, at this step; none when empty.
  void setSpinner(std::optional<int> step);
  /// Shows a ring before the text instead, with this share of the time left; none when empty. The ring moves
  /// smoothly between steps of a tenth of a second.
  void setCountdown(std::optional<double> share);

  /// Fades the button; 1 shows it fully.
  void setPresence(double share);

  /// Size of the capsule with the room for its focus ring.
  QSize sizeHint() const override;

  static constexpr int ringMargin = 4;

 private:
  void paintEvent(QPaintEvent* event) override;
  double leadingSide() const;
  void paintCapsule(QPainter& painter, const QRectF& capsule) const;
  void paintContent(QPainter& painter, const QRectF& capsule) const;
  QColor ink() const;

  const Role role_;
  const Size size_;
  std::string_view symbol_;
  std::optional<int> spinner_;
  std::optional<double> countdown_;
  double presence_ = 1.0;
  MovingValue countdownRing_{*this, 1.0};
};

}  // namespace vorli::ui
