#pragma once

#include <QFont>

namespace vorli::ui {

/// The face of everything that is read: labels, sentences, buttons. `points` are logical pixels.
QFont geist(double points, QFont::Weight weight = QFont::Normal);

/// The face of titles. `trackingEm` widens or narrows the letters, in shares of the size.
QFont fraunces(double points, QFont::Weight weight, double trackingEm = 0.0);

}  // namespace vorli::ui
