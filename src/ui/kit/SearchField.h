#pragma once

#include "ui/kit/WindowPalette.h"

#include <QLineEdit>
#include <QWidget>

namespace vorli::ui {

/// A field to search with, and a count at its right end.
class SearchField final : public QWidget {
 public:
  SearchField(const QString& placeholder, const QString& hint, Appearance appearance, QWidget* parent);

  QLineEdit& edit() { return *edit_; }
  void setCount(const QString& text);

  static constexpr int fieldHeight = 36;
  static constexpr int ringMargin = 4;  // around the field, for its focus ring

 private:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

  const WindowPalette& palette_;
  QLineEdit* edit_;
  QString count_;
};

}  // namespace vorli::ui
