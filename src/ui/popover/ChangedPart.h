#pragma once

#include "ui/popover/PopoverPicture.h"

#include <QRectF>
#include <optional>

namespace vorli::ui {

bool hasLitSparks(const AuroraPicture& aurora);

/// Where the second picture differs from the first, relative to the content's origin; empty when nowhere, and
/// nothing when the whole window is to be painted anew.
std::optional<QRectF> changedPart(const PopoverPicture& shown, const PopoverPicture& next);

}  // namespace vorli::ui
