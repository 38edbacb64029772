#pragma once

#include "daemon/Authority.h"
#include "daemon/Request.h"
#include "helper/HelperProtocol.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorli::daemon {

/// What is written down of one request.
struct LogEntry {
  std::uint64_t serial = 0;
  const Request& request;
  std::optional<UserId> user;
  Verdict verdict = Verdict::none;
  const HelperReply& reply;
  double seconds = 0.0;
};

/// One line of printable ASCII, at most 600 bytes, whatever the caller sent.
std::string logLine(const LogEntry& entry);

/// `text` between double quotes, everything but plain printable ASCII as `\xNN`, cut to `longest` bytes.
std::string quoted(std::string_view text, std::size_t longest);

/// The first 1,024 bytes of `text` with everything unprintable as a blank: what may stand in an answer.
std::string answerText(std::string_view text);

}  // namespace vorli::daemon
