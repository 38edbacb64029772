#pragma once

#include <QString>
#include <string_view>

namespace vorli::ui {

/// `text` is UTF-8; what is not becomes U+FFFD.
inline QString qtText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace vorli::ui
