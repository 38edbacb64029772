#pragma once

#include "ui/kit/WindowButton.h"
#include "ui/kit/WindowEnd.h"
#include "ui/kit/WindowSurroundings.h"

#include <QIcon>
#include <QPixmap>
#include <QRect>
#include <QWidget>
#include <functional>
#include <utility>

namespace vorli::ui {

/// A window that is one sheet of paper, drawn by the program itself without the desktop's title bar. It has
/// round corners and a soft shadow with a compositor, and square corners without one. It can be dragged
/// anywhere but on its controls. Its button, Ctrl+W, Alt+F4 and, by default, Escape close it. It is deleted
/// when it is closed; its surroundings must outlive it. For assistive tools, it is a dialog, or an alert if
/// its type is `Qt::Dialog`.
class PaperWindow : private WindowEnd, public QWidget {
 public:
  enum class CloseButton { shown, absent };
  enum class EscapeKey { closes, ignored };

  PaperWindow(const WindowSurroundings& surroundings, Qt::WindowType type, const QString& title,
              CloseButton closeButton);

  /// Opens the window in the middle of the screen, in front of everything; brings an open one to the front
  /// where it is.
  void present();
  /// Moves the window to the middle of its screen.
  void centre();

  /// Null when nothing in the window moves.
  const WindowMotion* movement() const { return surroundings_.movement(); }

  /// Sets the handler that is called whenever the window closes, before it is deleted.
  void setCloseHandler(std::function<void()> handler) { closed_ = std::move(handler); }

 protected:
  /// Fixes the size of the sheet and puts the buttons into its corner.
  void setSheetSize(const QSize& size);
  void setEscapeKey(EscapeKey key) { escape_ = key; }
  /// Adds a button that minimises the window. Call it before `setSheetSize`.
  void addMinimiseButton();
  /// Redraws the open window in place whenever the desktop's colours change; `makeContent` replaces the
  /// content of the sheet. The focus stays at the control with the same spoken name.
  void followAppearance(std::function<void()> makeContent);
  /// Moves the window's buttons above widgets that were added since, and after them in the focus order.
  void keepButtonsLast();
  /// The sheet without the shadow around it.
  QRect sheet() const;
  /// Radius of the sheet's corners; 0 without a compositor.
  double cornerRadius() const;
  const WindowPalette& colours() const { return *palette_; }
  Appearance appearance() const { return appearance_; }

  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void takeAppearance();
  WindowButton* makeButton(WindowButton::Kind kind);
  void placeButtons();
  QMargins shadowMargins() const;
  QIcon markIcon() const;
  QPixmap drawGround() const;
  void drawShadows(QPainter& painter, double ratio) const;
  void drawSheet(QPainter& painter, const QRectF& sheet, double ratio) const;

  const WindowSurroundings& surroundings_;
  Appearance appearance_;
  const Compositing compositing_;
  const WindowPalette* palette_;
  WindowButton* minimise_ = nullptr;
  WindowButton* close_ = nullptr;
  EscapeKey escape_ = EscapeKey::closes;
  std::function<void()> closed_;
  QPixmap ground_;
  std::function<void()> makeContent_;
  Subscription appearanceChanges_;
};

}  // namespace vorli::ui
