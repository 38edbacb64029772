#pragma once

#include <string>

namespace vorli::linuxhost {

/// Build ID that the linker gave the running program, in hexadecimal digits. Stripping keeps it. Empty when
/// the program was linked without one.
std::string buildIdentity();

}  // namespace vorli::linuxhost
