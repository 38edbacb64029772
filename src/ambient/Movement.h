#pragma once

namespace vorli {

/// Whether things move, or only fade, as for users who asked for reduced motion.
enum class Movement { kept, dropped };

}  // namespace vorli
