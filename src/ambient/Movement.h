#pragma once

namespace vorli {

/// Whether things move, or only fade: what a user who asked for less movement gets.
enum class Movement { kept, dropped };

}  // namespace vorli
