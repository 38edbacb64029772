#pragma once

#include "ui/kit/WindowPalette.h"

#include <QPainter>
#include <QRectF>
#include <QString>

namespace vorli::ui {

/// Paints the stand-in for the icon of an application that has none: the first letter of its name on one of
/// six quiet hues, always the same one for the same identifier.
void paintLetterTile(QPainter& painter, const QRectF& tile, const QString& name, const QString& identifier,
                     Appearance appearance);

/// Returns which of the six hues an identifier gets.
int letterTileHue(const QString& identifier);

}  // namespace vorli::ui
