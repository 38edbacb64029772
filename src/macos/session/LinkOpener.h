#pragma once

#include "ports/LinkOpener.h"

namespace vorli::machost {

/// The programs that the user has chosen for links.
class LinkOpener final : public ports::LinkOpener {
 public:
  bool openURL(const std::string& url) override;
};

}  // namespace vorli::machost
