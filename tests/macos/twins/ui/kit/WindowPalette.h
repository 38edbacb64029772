#pragma once

// Without the colours, which need Qt's painting.

namespace vorli::ui {

enum class Appearance { light, dark };

}  // namespace vorli::ui
