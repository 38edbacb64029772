#pragma once

#include "ui/kit/RowFace.h"

#include <QWidget>
#include <functional>

namespace vorli::ui {

class GlassPillButton;

/// An offer to do something with several items at once.
class BulkBanner final : public QWidget {
 public:
  enum class Kind { plain, destructive };

  BulkBanner(Kind kind, const RowFace& face, const QString& button, Appearance appearance, QWidget* parent,
             const std::function<void()>& press);

  GlassPillButton& button() { return *button_; }
  void setFace(const RowFace& face);

  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

 private:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  double buttonWidth() const;

  const WindowPalette& palette_;
  RowFace face_;
  GlassPillButton* button_;
};

}  // namespace vorli::ui
