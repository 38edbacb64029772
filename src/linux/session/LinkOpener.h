#pragma once

#include "linux/session/LinkHandlers.h"
#include "ports/LinkOpener.h"

#include <utility>

namespace vorli::linuxhost {

/// Starts the program that the desktop's lists name for the link's scheme.
class LinkOpener final : public ports::LinkOpener {
 public:
  explicit LinkOpener(LinkHandlers::Places places) : handlers_(std::move(places)) {}

  bool openURL(const std::string& url) override {
    return handlers_.open("x-scheme-handler/" + url.substr(0, url.find(':')), url);
  }

 private:
  const LinkHandlers handlers_;
};

}  // namespace vorli::linuxhost
