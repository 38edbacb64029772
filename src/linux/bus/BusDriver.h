#pragma once

/// The bus itself, which knows the names of all services.
namespace vorli::linuxhost::bus::driver {

inline constexpr char service[] = "org.freedesktop.DBus";
inline constexpr char path[] = "/org/freedesktop/DBus";
inline constexpr char interface[] = "org.freedesktop.DBus";

}  // namespace vorli::linuxhost::bus::driver
