#pragma once

#include "ui/kit/WindowPalette.h"

#include <QWidget>

namespace vorli::ui {

/// A wordless picture at the top of a page, which reflects the page's switches. It is decorative and hidden
/// from assistive tools.
class PagePicture final : public QWidget {
 public:
  enum class Scene { notice, glow, talk };

  PagePicture(Scene scene, Appearance appearance, QWidget* parent);

  /// Shows the notice or the glow.
  void setLit(bool lit);
  /// Shows the moon beside the dial.
  void setQuiet(bool quiet);

  static constexpr int pictureHeight = 216;

 private:
  void paintEvent(QPaintEvent* event) override;
  void paintDesktop(QPainter& painter) const;
  void paintGlow(QPainter& painter, const QRectF& desktop) const;
  void paintNotice(QPainter& painter, const QRectF& desktop) const;
  void paintPanel(QPainter& painter, const QRectF& desktop) const;
  void paintTalk(QPainter& painter) const;

  const Scene scene_;
  const WindowPalette& palette_;
  bool lit_ = true;
  bool quiet_ = false;
};

}  // namespace vorli::ui
