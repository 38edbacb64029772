#include "insights/ApplicationName.h"

#include "base/UTF8.h"
#include "base/UnicodeText.h"

#include <algorithm>
#include <array>

namespace vorli {

namespace {

using namespace std::string_view_literals;

constexpr std::array identifierPrefixes{"com."sv, "io."sv, "org."sv, "net."sv, "co."sv, "app."sv, "dev."sv};
constexpr std::array helperSuffixes{" Helper (Renderer)"sv, " Helper (GPU)"sv, " Helper (Plugin)"sv,
                                    " Helper"sv};
constexpr std::string_view maker = "Google ";
constexpr std::string_view namelessProcess = "pid ";

bool isIdentifier(std::string_view name) {
  const std::string lower = lowercased(name);
  return std::ranges::any_of(identifierPrefixes, [&](auto prefix) { return lower.starts_with(prefix); });
}

bool isProcessNumber(std::string_view name) {
  if (!lowercased(name).starts_with(namelessProcess)) return false;
  return std::ranges::all_of(name.substr(namelessProcess.size()),
                             [](char c) { return c >= '0' && c <= '9'; });
}

bool isHelper(std::string_view name) {
  return std::ranges::any_of(helperSuffixes, [=](auto suffix) { return name.ends_with(suffix); });
}

// "Worker (Notes)" works for Notes. A helper's parentheses tell its kind instead, and go with it.
std::string_view nameInParentheses(std::string_view name) {
  const auto open = name.find(" (");
  if (open == std::string_view::npos || !name.ends_with(')') || isHelper(name)) return name;
  const auto inner = trimmed(name.substr(open + 2, name.size() - open - 3));
  if (inner.empty() || inner.find_first_of("()/") != std::string_view::npos || isIdentifier(inner))
    return name;
  return inner;
}

std::string_view withoutHelperSuffix(std::string_view name) {
  for (const auto suffix : helperSuffixes) {
    if (const auto at = name.find(suffix); at != std::string_view::npos) return name.substr(0, at);
  }
  return name;
}

}  // namespace

std::optional<std::string> cleanedApplicationName(std::string_view name) {
  name = trimmed(name);
  if (name.empty() || name.contains('/') || isIdentifier(name)) return std::nullopt;
  if (name.contains(replacementCharacter) || isProcessNumber(name)) return std::nullopt;

  name = trimmed(withoutHelperSuffix(nameInParentheses(name)));
  if (name.starts_with(maker)) name.remove_prefix(maker.size());
  if (name.empty() || name.contains('/') || isIdentifier(name)) return std::nullopt;
  return capitalizingFirst(name);
}

}  // namespace vorli
