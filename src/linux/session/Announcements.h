#pragma once

#include "ports/Announcements.h"

namespace vorli::linuxhost {

/// Announcements over the accessibility bus, on the connection on which the toolkit exports the program's
/// windows: a screen reader ignores those from other senders. Without a screen reader there is no such
/// connection.
class Announcements final : public ports::Announcements {
 public:
  void post(std::string_view text) override;
};

}  // namespace vorli::linuxhost
