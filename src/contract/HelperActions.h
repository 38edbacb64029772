#pragma once

/// Identifiers of the actions that polkit must authorise before the daemon does its work. The other methods
/// need no authorisation.
namespace vorli::helper::action {

inline constexpr const char* purgeMemory = "com.kv.vorli.helper.purge-memory";
inline constexpr const char* flushDNS = "com.kv.vorli.helper.flush-dns";
inline constexpr const char* moveStartupItem = "com.kv.vorli.helper.move-startup-item";

}  // namespace vorli::helper::action
