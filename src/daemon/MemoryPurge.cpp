#include "daemon/MemoryPurge.h"

#include <cmath>
#include <cstdio>
#include <string>

namespace vorli::daemon {

namespace {

std::uint64_t shrinkage(std::uint64_t before, std::uint64_t after) {
  return before > after ? before - after : 0;
}

std::string mebibytes(std::uint64_t bytes) {
  return std::to_string(bytes >> 20);
}

std::string signedMebibytes(std::uint64_t before, std::uint64_t after) {
  return after < before ? "-" + mebibytes(before - after) : "+" + mebibytes(after - before);
}

std::string secondsText(double seconds) {
  const auto tenths = std::llround(seconds * 10.0);
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

std::string savingsText(const MemoryReading& before, const MemoryReading& after) {
  return "Freed " + mebibytes(shrinkage(after.freeBytes, before.freeBytes)) + " MiB (page cache " +
         mebibytes(shrinkage(before.pageCacheBytes, after.pageCacheBytes)) + ", slab " +
         mebibytes(shrinkage(before.reclaimableSlabBytes, after.reclaimableSlabBytes)) + "), available " +
         signedMebibytes(before.availableBytes, after.availableBytes) + " MiB";
}

}  // namespace

HelperReply MemoryPurge::run() {
  const double start = clock_.now();
  const auto before = control_.read();

  const bool synced = control_.syncWithin(Timing::syncSeconds);
  if (const auto dropped = control_.dropPageCache(); !dropped)
    return {dropped.error().code, "The page cache could not be dropped: " + dropped.error().text};
  if (before && before->reclaimableSlabBytes > leastSlabBytes) {
    if (const auto dropped = control_.dropSlab(); !dropped)
      return {dropped.error().code, "The slab caches could not be dropped: " + dropped.error().text};
  }
  std::string remark;
  if (!synced) remark += ", writing back still runs";
  if (clock_.now() - start < Timing::latestCompactionSeconds) {
    if (const auto compacted = control_.compact(); !compacted)
      remark += ", not compacted: " + compacted.error().text;
  }

  const auto after = control_.read();
  const auto savings = before && after ? savingsText(*before, *after) : std::string("Purged");
  return {0, savings + ", " + secondsText(clock_.now() - start) + remark};
}

}  // namespace vorli::daemon
