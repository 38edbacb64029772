#pragma once

#include "ports/StatusItem.h"

#include <QImage>

class QPainter;
class QRectF;

namespace vorli::ui {

/// Rounds every number to what a screen can show, so that pictures which look the same are equal: colours to
/// 8 bits, lengths to 1/256 point.
ports::StatusPicture rounded(const ports::StatusPicture& picture);

/// Draws the picture as the largest square in the middle of `area`, which is in the painter's units.
void paintStatusPicture(QPainter& painter, const QRectF& area, const ports::StatusPicture& picture);

/// Draws the picture at exactly `sidePixels` on a transparent background; premultiplied.
QImage statusPictureImage(const ports::StatusPicture& picture, int sidePixels);

}  // namespace vorli::ui
