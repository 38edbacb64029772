#pragma once

#include "ui/kit/WindowPalette.h"

#include <QList>
#include <QString>
#include <QWidget>

class QPainter;

namespace vorli::ui {

/// A titled group of rows on one plate. Rows are its children, one below the other, with the height that they
/// need at the card's width; hidden rows take no room.
class SettingsCard final : public QWidget {
 public:
  /// Has only the plate if `title` is empty.
  SettingsCard(const QString& title, Appearance appearance, QWidget* parent);

  /// Takes over the row.
  void addRow(QWidget* row);
  /// Places the rows again after one has changed its height or its visibility.
  void arrange();

  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

  /// Paints the background of a row under the pointer, within the round corners of its card.
  static void paintHover(QPainter& painter, const QWidget& row, const QColor& colour);

 private:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  /// Height of the title at a width, with the gap below it.
  int top(int width) const;

  const QString title_;
  const WindowPalette& palette_;
  QList<QWidget*> rows_;
};

}  // namespace vorli::ui
