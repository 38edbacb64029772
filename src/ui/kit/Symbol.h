#pragma once

#include <QColor>
#include <QPainterPath>
#include <QRectF>
#include <optional>
#include <string_view>
#include <vector>

class QPainter;

namespace vorli::ui {

/// A pictogram of the program's own family. Main thread.
class Symbol {
 public:
  /// Finds a symbol by name, such as "gearshape"; empty when the family does not have it. Each symbol is read
  /// once and kept.
  static const Symbol* named(std::string_view name);

  /// Draws the symbol into `place`, which is square. `strokeWidth` replaces the width of the drawing, on the
  /// grid of 24 by 24.
  void paint(QPainter& painter, const QRectF& place, const QColor& colour,
             std::optional<double> strokeWidth = std::nullopt) const;

  struct Part {
    QPainterPath path;
    double strokeWidth = 0.0;  // 0: filled
  };
  const std::vector<Part>& parts() const { return parts_; }

 private:
  std::vector<Part> parts_;
};

/// Draws the symbol of that name into `place`; does nothing when there is none.
void paintSymbol(QPainter& painter, std::string_view name, const QRectF& place, const QColor& colour,
                 std::optional<double> strokeWidth = std::nullopt);

}  // namespace vorli::ui
