#pragma once

#include <QFont>

namespace vorli::ui {

/// Typeface of running text: labels, sentences, buttons. `points` are logical pixels.
QFont geist(double points, QFont::Weight weight = QFont::Normal);

/// Typeface of titles. `trackingEm` is the extra space between letters, as a fraction of the size.
QFont fraunces(double points, QFont::Weight weight, double trackingEm = 0.0);

}  // namespace vorli::ui
