#pragma once

#include <QBrush>
#include <QColor>
#include <QRectF>
#include <array>

namespace vorli::ui {

enum class Appearance { light, dark };

/// A gradient between two colours.
struct VerticalGradient {
  QColor top;
  QColor bottom;

  QBrush over(const QRectF& area) const;
};

/// Colours of the picture at the top of a page: a small desktop with a notice, or two speech bubbles.
struct PagePictureColours {
  QColor skyStart, skyEnd;
  QColor desktopLine;
  QColor panel;
  QColor bar;  // a line of text
  QColor notice;
  QColor bubble, bubbleLine;
  QColor litTick;
  QColor glowOuter, glowInner;
  double glowOpacity = 0.0;  // at the edge
};

/// One hue of the tiles that replace missing icons.
struct LetterTileHue {
  QColor ground;
  QColor letter;
};
struct LetterTileColours {
  std::array<LetterTileHue, 6> hues;
  QColor line;
};

/// Colours of the program's mark. Its ticks go from the first colour to the last one.
struct MarkColours {
  VerticalGradient ground;
  QColor line;
  QColor firstTick, lastTick;
  QColor waitingTick;
};

/// The two shadows under a toast.
struct ToastShadows {
  QColor near, far;
};

/// One of the soft shadows under a window.
struct WindowShadow {
  QColor colour;
  double blur;    // twice the standard deviation, as in CSS
  double offset;  // downwards
};

/// Colours of the windows and menus that the program draws, named by purpose.
struct WindowPalette {
  QColor surface, ink, ink2, meta, accent, accentInk;
  VerticalGradient card;
  QColor border, divider, lip;
  QColor wash, wash2, calmWash, calmLine;
  VerticalGradient primary;
  QColor primaryText, primaryLine, primaryLip;
  VerticalGradient pill;
  QColor pillLine, offLine;
  VerticalGradient knob;
  QColor amber, warn, amberInk, amberWash, amberLine;
  QColor red, redInk, redWash, redLine;
  QColor green, idle;
  QColor field, fieldLine;
  VerticalGradient toast;
  QColor toastLine, windowLine, gleam, scroll;
  QColor tealBloom, amberBloom;  // of the window's background
  QColor halo;                   // behind the mark of the first steps
  VerticalGradient side;         // ground of the settings' sidebar
  QColor cardShadow, pillShadow;
  QColor knobLine, knobShadow;
  float motifOpacity = 0.0F;       // of the dial in the sidebar's corner
  QColor letterpress;              // second edge of the pressed text
  double letterpressOffset = 1.0;  // positive: downwards
  MarkColours mark;
  ToastShadows toastShadows;
  std::array<WindowShadow, 2> windowShadows;
  PagePictureColours picture;
  LetterTileColours letterTile;

  static const WindowPalette& of(Appearance appearance);
};

}  // namespace vorli::ui
