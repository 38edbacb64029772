#pragma once

// Leaves out the colours, because they need Qt's painting.

namespace vorli::ui {

enum class Appearance { light, dark };

}  // namespace vorli::ui
