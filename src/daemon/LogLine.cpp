#include "daemon/LogLine.h"

#include <cmath>

namespace vorli::daemon {

namespace {

constexpr std::size_t longestArgument = 150;
constexpr std::size_t longestText = 120;
constexpr std::size_t longestCaller = 40;
constexpr std::size_t longestAnswer = 384;
constexpr std::string_view cutMark = "...";

bool isPlain(char c) {
  return c >= ' ' && c <= '~' && c != '"' && c != '\\';
}

std::string escaped(char c) {
  static constexpr std::string_view digits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(c);
  return {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
}

std::string argumentsText(const Request& request) {
  if (const auto* kill = std::get_if<KillArguments>(&request.arguments))
    return std::to_string(kill->pid) + ", " + std::to_string(kill->signal);
  if (const auto* move = std::get_if<MoveArguments>(&request.arguments))
    return quoted(move->from, longestArgument) + ", " + quoted(move->to, longestArgument);
  return "";
}

}  // namespace

std::string quoted(std::string_view text, std::size_t longest) {
  std::string result = "\"";
  for (const char c : text) {
    const auto piece = isPlain(c) ? std::string(1, c) : escaped(c);
    if (result.size() + piece.size() + cutMark.size() + 1 > longest) {
      result += cutMark;
      break;
    }
    result += piece;
  }
  return result + '"';
}

std::string answerText(std::string_view text) {
  std::string result(text.substr(0, longestAnswer));
  for (char& c : result)
    if (c < ' ' || c > '~') c = ' ';
  return result;
}

std::string logLine(const LogEntry& entry) {
  return "request=" + std::to_string(entry.serial) +
         " caller=" + quoted(entry.request.caller, longestCaller) +
         " uid=" + (entry.user ? std::to_string(*entry.user) : "unknown") +
         " method=" + std::string(rulesOf(entry.request.method).name) + " args=(" +
         argumentsText(entry.request) + ") verdict=" + std::string(nameOf(entry.verdict)) +
         " exit=" + std::to_string(entry.reply.exitCode) +
         " ms=" + std::to_string(std::llround(entry.seconds * 1000.0)) +
         " text=" + quoted(entry.reply.output, longestText);
}

}  // namespace vorli::daemon
