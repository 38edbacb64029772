#pragma once

#include "ui/kit/Control.h"
#include "ui/kit/RowFace.h"

namespace vorli::ui {

/// A row that does something when it is pressed: opens a link in the browser or runs an action of the
/// program.
class LinkRow final : public Control {
 public:
  enum class Kind { externalLink, action };

  LinkRow(Kind kind, const RowFace& face, Appearance appearance, QWidget* parent);

  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

 private:
  void paintEvent(QPaintEvent* event) override;
  double arrowSide() const { return kind_ == Kind::externalLink ? 16.0 : 15.0; }

  const Kind kind_;
  const RowFace face_;
};

}  // namespace vorli::ui
