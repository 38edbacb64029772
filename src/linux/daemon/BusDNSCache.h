#pragma once

#include "daemon/DNSCache.h"

#include <memory>
#include <string>

namespace sdbus {
class IConnection;
class IProxy;
}  // namespace sdbus

namespace vorli::linuxhost {

/// A DNS cache that is emptied by a method call without arguments on the system bus.
class BusDNSCache final : public daemon::DNSCache {
 public:
  struct Method {
    const char* displayName;
    const char* service;
    const char* path;
    const char* interface;
    const char* name;
  };
  static const Method resolved;
  static const Method networkManagerDnsmasq;
  static const Method dnsmasq;

  BusDNSCache(sdbus::IConnection& connection, const Method& method);
  ~BusDNSCache() override;

  std::string_view name() const override { return method_.displayName; }
  void flush(double seconds, OnceReply<Outcome> reply) override;

 private:
  void call(const std::string& owner, double seconds, OnceReply<Outcome> reply);

  sdbus::IConnection& connection_;
  const Method& method_;
  std::unique_ptr<sdbus::IProxy> bus_;
  std::unique_ptr<sdbus::IProxy> owner_;
};

}  // namespace vorli::linuxhost
