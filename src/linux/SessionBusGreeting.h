#pragma once

#include <string>
#include <string_view>

namespace vorli::linuxhost {

/// Where the session bus listens, in the notation of bus addresses: DBUS_SESSION_BUS_ADDRESS, else the socket
/// in XDG_RUNTIME_DIR. Empty when neither is there.
std::string sessionBusAddress();

/// Knocks at a bus and waits for its first word. False only for one that takes the connection and then keeps
/// silent, or takes none, for `limitSeconds`: the libraries would wait for it without end. One that is not
/// there, says no, or listens elsewhere than on a local socket is left to them. Blocks for three times the
/// limit at most.
bool greetsBack(std::string_view busAddress, double limitSeconds);

}  // namespace vorli::linuxhost
