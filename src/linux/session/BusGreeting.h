#pragma once

#include <string>
#include <string_view>

namespace vorli::linuxhost {

/// Address of the session bus: DBUS_SESSION_BUS_ADDRESS, otherwise the socket in XDG_RUNTIME_DIR. Empty when
/// neither variable is set.
std::string sessionBusAddress();

/// Address of the system bus: DBUS_SYSTEM_BUS_ADDRESS, otherwise the socket that every distribution uses.
std::string systemBusAddress();

/// Connects to a bus and waits for its first answer. False only when the bus takes no connection, or takes
/// one and stays silent, for `limitSeconds`: the libraries would wait for it forever. A bus that is missing,
/// refuses, or does not listen on a local socket is left to the libraries. Blocks for at most three times the
/// limit.
bool greetsBack(std::string_view busAddress, double limitSeconds);

}  // namespace vorli::linuxhost
