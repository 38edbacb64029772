#pragma once

#include "ui/WindowSurroundings.h"

#include <QPixmap>
#include <QRect>
#include <QWidget>

namespace vorli::ui {

class WindowButton;

/// A window that is one sheet, drawn by the program itself, without the desktop's title bar: round corners
/// and a soft shadow where there is a compositor, square ones where there is none. Any place without a
/// control moves it; Escape, Ctrl+W and its button close it. Goes when it is closed.
class PaperWindow : public QWidget {
 public:
  enum class CloseButton { shown, absent };

  PaperWindow(const WindowSurroundings& surroundings, Qt::WindowType type, const QString& title,
              CloseButton closeButton);

  /// Opens the window in the middle of the screen, in front of everything.
  void present();

 protected:
  /// Fixes the size of the sheet and puts the close button into its corner.
  void setSheetSize(const QSize& size);
  /// The sheet without the shadow around it.
  QRect sheet() const;
  const WindowPalette& colours() const { return palette_; }
  Appearance appearance() const { return appearance_; }

  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QMargins shadowMargins() const;
  QPixmap drawGround() const;
  void drawShadows(QPainter& painter, double ratio) const;
  void drawSheet(QPainter& painter, const QRectF& sheet, double ratio) const;

  const WindowSurroundings& surroundings_;
  const Appearance appearance_;
  const Compositing compositing_;
  const WindowPalette& palette_;
  WindowButton* close_ = nullptr;
  QPixmap ground_;
};

}  // namespace vorli::ui
