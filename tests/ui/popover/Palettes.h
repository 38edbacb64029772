#pragma once

#include "ui/popover/PopoverPalette.h"

namespace vorli::ui {

inline const PopoverPalette& lightPopover = PopoverPalette::of(Appearance::light);
inline const PopoverPalette& darkPopover = PopoverPalette::of(Appearance::dark);

}  // namespace vorli::ui
