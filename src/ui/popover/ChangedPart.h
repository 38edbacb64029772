#pragma once

#include "ui/popover/PopoverPicture.h"

#include <QRectF>
#include <optional>

namespace vorli::ui {

bool hasLitSparks(const AuroraPicture& aurora);

/// Returns the part in which `next` differs from `shown`, relative to the content's origin: an empty
/// rectangle when they are equal, and nothing when the whole window must be repainted.
std::optional<QRectF> changedPart(const PopoverPicture& shown, const PopoverPicture& next);

}  // namespace vorli::ui
