#pragma once

#include <string>

namespace vorli {

/// A new random identifier as 36 characters in upper case, such as "1B4E28BA-2FA1-41D2-883F-0016D3CCA427".
std::string newUUID();

}  // namespace vorli
