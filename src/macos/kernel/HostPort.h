#pragma once

#include <mach/mach.h>

namespace vorli::machost {

/// The right to query the kernel about the machine. Each `mach_host_self` adds a reference, so the result is
/// kept instead of being requested at every sample.
class HostPort {
 public:
  HostPort() : port_(mach_host_self()) {}
  ~HostPort() { mach_port_deallocate(mach_task_self(), port_); }
  HostPort(const HostPort&) = delete;
  HostPort& operator=(const HostPort&) = delete;

  mach_port_t get() const { return port_; }

 private:
  const mach_port_t port_;
};

}  // namespace vorli::machost
