#pragma once

#include "ui/linux/ClickAnchor.h"

#include <QList>

namespace vorli::ui {

/// The screens as Qt sees them now.
QList<ScreenPlace> screenPlaces();

}  // namespace vorli::ui
