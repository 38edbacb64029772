#pragma once

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <string_view>

namespace vorli::ui {

/// Converts UTF-8; invalid sequences become U+FFFD.
inline QString qtText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// A view of bytes that `array` owns.
inline std::string_view bytesOf(const QByteArray& array) {
  return {array.constData(), static_cast<std::size_t>(array.size())};
}

}  // namespace vorli::ui
