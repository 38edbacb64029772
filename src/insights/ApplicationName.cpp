#include "insights/ApplicationName.h"

#include "base/UTF8.h"
#include "base/UnicodeText.h"

#include <algorithm>

namespace vorli {

namespace {

constexpr std::string_view identifierPrefixes[] = {"com.", "io.", "org.", "net.", "co.", "app.", "dev."};
constexpr std::string_view helperSuffixes[] = {" Helper (Renderer)", " Helper (GPU)", " Helper (Plugin)",
                                               " Helper"};
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

// "Worker (Notes)" belongs to Notes. A helper's parentheses contain its kind instead, so they are part of the
// helper suffix.
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

std::string_view withoutMaker(std::string_view name) {
  return name.starts_with(maker) ? name.substr(maker.size()) : name;
}

// Keeps slashes, parentheses and dots, which the author chose. Only a name that repeats the identifier is not
// a name.
std::optional<std::string> wholeName(std::string_view name, std::string_view identifier) {
  name = trimmed(name);
  if (name.empty() || name.contains(replacementCharacter)) return std::nullopt;
  if (isIdentifier(name) && lowercased(name) == lowercased(identifier)) return std::nullopt;
  return capitalizingFirst(trimmed(withoutMaker(name)));
}

}  // namespace

std::optional<std::string> cleanedApplicationName(std::string_view name) {
  name = trimmed(name);
  if (name.empty() || name.contains('/') || isIdentifier(name)) return std::nullopt;
  if (name.contains(replacementCharacter) || isProcessNumber(name)) return std::nullopt;

  name = withoutMaker(trimmed(withoutHelperSuffix(nameInParentheses(name))));
  if (name.empty() || name.contains('/') || isIdentifier(name)) return std::nullopt;
  return capitalizingFirst(name);
}

std::optional<std::string> shownApplicationName(const ports::RunningApplication& application,
                                                ApplicationPathRules::Kind kind) {
  if (!application.localizedName) return std::nullopt;
  const bool isWritten = kind == ApplicationPathRules::Kind::folders && application.bundleIdentifier;
  return isWritten ? wholeName(*application.localizedName, *application.bundleIdentifier)
                   : cleanedApplicationName(*application.localizedName);
}

}  // namespace vorli
