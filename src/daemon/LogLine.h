#pragma once

#include "contract/HelperProtocol.h"
#include "daemon/Authority.h"
#include "daemon/Request.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorli::daemon {

/// Data logged about one request.
struct LogEntry {
  std::uint64_t serial = 0;
  const Request& request;
  std::optional<UserId> user;
  Verdict verdict = Verdict::none;
  const HelperReply& reply;
  double seconds = 0.0;
};

/// Formats one line of printable ASCII, at most 600 bytes, whatever the caller sent.
std::string logLine(const LogEntry& entry);

/// Returns `text` in double quotes, with all bytes but plain printable ASCII as `\xNN`, cut to `longest`
/// bytes.
std::string quoted(std::string_view text, std::size_t longest);

/// Makes `text` safe for an answer: its first 1,024 bytes, with unprintable characters replaced by blanks.
std::string answerText(std::string_view text);

}  // namespace vorli::daemon
