#pragma once

#include <QByteArray>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorli::ui {

/// The text setting of that name in the bytes of an _XSETTINGS_SETTINGS property. Empty when it is missing or
/// no text, or when the bytes are damaged before it.
std::optional<std::string> xSettingsText(const QByteArray& bytes, std::string_view name);

/// The whole number of that name; empty as above.
std::optional<std::int32_t> xSettingsNumber(const QByteArray& bytes, std::string_view name);

}  // namespace vorli::ui
