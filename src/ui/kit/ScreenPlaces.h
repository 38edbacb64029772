#pragma once

#include "ui/status/ClickAnchor.h"

#include <QList>

namespace vorli::ui {

/// The screens as Qt sees them now.
QList<ScreenPlace> screenPlaces();

}  // namespace vorli::ui
