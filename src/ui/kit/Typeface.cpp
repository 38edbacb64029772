#include "ui/kit/Typeface.h"

#include "ui/kit/InstalledFonts.h"

#include <QStringList>

namespace vorli::ui {
namespace {

QFont face(const char* family, const char* substitute, QFont::StyleHint hint, double points,
           QFont::Weight weight) {
  loadInstalledFonts();
  QFont font(QStringList{QString::fromLatin1(family), QString::fromLatin1(substitute)});
  font.setStyleHint(hint);
  // QFont takes fractions only in typographic points; at Qt's logical 96 dpi, a point is 4/3 of a pixel.
  font.setPointSizeF(points * 0.75);
  font.setWeight(weight);
  return font;
}

}  // namespace

QFont geist(double points, QFont::Weight weight) {
  return face("Geist", "sans-serif", QFont::SansSerif, points, weight);
}

QFont fraunces(double points, QFont::Weight weight, double trackingEm) {
  QFont font = face("Fraunces 9pt", "serif", QFont::Serif, points, weight);
  font.setLetterSpacing(QFont::AbsoluteSpacing, points * trackingEm);
  return font;
}

}  // namespace vorli::ui
