#pragma once

/// Names of the daemon's methods on the bus, as declared in com.kv.vorli.helper.xml.
namespace vorli::helper::method {

inline constexpr const char* ping = "Ping";
inline constexpr const char* version = "Version";
inline constexpr const char* purgeMemory = "PurgeMemory";
inline constexpr const char* flushDNS = "FlushDNS";
inline constexpr const char* killPID = "KillPID";
inline constexpr const char* dumpBTM = "DumpBTM";
inline constexpr const char* moveLaunchAgentPlist = "MoveLaunchAgentPlist";

}  // namespace vorli::helper::method
