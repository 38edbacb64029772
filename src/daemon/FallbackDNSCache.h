#pragma once

#include "daemon/DNSCache.h"

namespace vorli::daemon {

/// One server that can be reached in two ways: the second is tried when the first does not work.
class FallbackDNSCache final : public DNSCache {
 public:
  /// Both caches must outlive this object.
  FallbackDNSCache(DNSCache& first, DNSCache& second) : first_(first), second_(second) {}

  std::string_view name() const override { return first_.name(); }
  void flush(double seconds, OnceReply<Outcome> reply) override;

 private:
  DNSCache& first_;
  DNSCache& second_;
};

}  // namespace vorli::daemon
