#pragma once

namespace vorli::linuxhost::bus {

inline constexpr char service[] = "org.freedesktop.DBus";
inline constexpr char path[] = "/org/freedesktop/DBus";
inline constexpr char interface[] = "org.freedesktop.DBus";

}  // namespace vorli::linuxhost::bus
