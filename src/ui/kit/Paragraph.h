#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>
#include <QStringList>

class QPainter;

namespace vorli::ui {

/// A kind of text in the windows: its typeface and the distance of its lines in points.
struct TextRole {
  QFont font;
  double leading = 0.0;  // at least the height of the font, which may be enlarged by the desktop

  static TextRole onboardingTitle();
  static TextRole crashTitle();
  static TextRole smallCrashTitle();
  static TextRole pageTitle();
  static TextRole emptyHeading();
  static TextRole emptyText();
  static TextRole groupTitle();
  static TextRole listHeading();
  static TextRole panelHeading();
  static TextRole pageSubtitle();
  static TextRole onboardingSentence();
  static TextRole crashBody();
  static TextRole smallCrashBody();
  static TextRole rowTitle();
  static TextRole rowText();
  static TextRole meta();
  static TextRole metaStatus();
  static TextRole tab();
  static TextRole button();
  static TextRole largeButton();
  static TextRole search();
  static TextRole count();
  static TextRole badge();
  static TextRole sortHint();
  static TextRole toast();
  static TextRole toastName();
  static TextRole status();
  static TextRole footer();
  static TextRole fixed();
};

/// A text broken into lines. A non-breaking hyphen is drawn as a plain one, which the typefaces have, and
/// never ends a line.
class Paragraph {
 public:
  enum class Wrap {
    natural,   // fills each line
    balanced,  // uses the smallest width with the same number of lines
  };

  Paragraph(const QString& text, TextRole role, double width, Wrap wrap = Wrap::natural);

  double height() const;
  /// Height of all lines but the first.
  double heightOfFurtherLines() const { return height() - role_.leading; }
  /// Width of the longest line.
  double naturalWidth() const;
  const QStringList& lines() const { return lines_; }

  /// Draws the lines vertically centred in `area`.
  void paintCentred(QPainter& painter, const QRectF& area, const QColor& colour,
                    Qt::Alignment alignment = Qt::AlignLeft) const;
  /// Draws the lines from the top of `area`; only their horizontal alignment counts.
  void paint(QPainter& painter, const QRectF& area, const QColor& colour,
             Qt::Alignment alignment = Qt::AlignLeft) const;

 private:
  TextRole role_;
  QStringList lines_;
};

/// Width of a text in one line.
double textWidth(const QString& text, const TextRole& role);

/// Draws a text in as many lines as it needs at the width of `area`, vertically centred in it.
void paintLines(QPainter& painter, const QString& text, const TextRole& role, const QRectF& area,
                const QColor& colour, Qt::Alignment alignment = Qt::AlignLeft);

/// Draws one line, vertically centred; cut with an ellipsis where it does not fit.
void paintLine(QPainter& painter, const QString& text, const TextRole& role, const QRectF& area,
               const QColor& colour, Qt::Alignment alignment = Qt::AlignLeft);

}  // namespace vorli::ui
