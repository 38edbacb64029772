#include "daemon/MoveOrder.h"

#include "contract/ExitCode.h"

#include <algorithm>
#include <cerrno>
#include <optional>

namespace vorli::daemon {

namespace {

constexpr std::size_t longestName = 200;

struct Path {
  std::string_view folder;
  std::string_view name;
};

bool isAllowedCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
         std::string_view("._@:+-\\").contains(c);
}

// Paths are not normalised: a path that is not in its plainest form is refused.
std::optional<Path> split(std::string_view path) {
  const auto slash = path.rfind('/');
  if (slash == std::string_view::npos || slash == 0) return std::nullopt;
  const Path parts{path.substr(0, slash), path.substr(slash + 1)};
  if (parts.name.empty() || parts.name.size() > longestName || parts.name.starts_with('.'))
    return std::nullopt;
  if (!std::ranges::all_of(parts.name, isAllowedCharacter)) return std::nullopt;
  return parts;
}

bool isItemOf(const helper::SystemStartupFolder& folder, std::string_view name) {
  return std::ranges::any_of(folder.suffixes, [name](std::string_view suffix) {
    return name.size() > suffix.size() && name.ends_with(suffix);
  });
}

bool isPutAwayNameOf(std::string_view longer, std::string_view plain) {
  if (!longer.starts_with(plain)) return false;
  const auto extension = longer.substr(plain.size());
  return extension == helper::disabledExtension || extension == helper::removedExtension;
}

std::unexpected<HelperReply> malformed(std::string_view text) {
  return std::unexpected(HelperReply{EINVAL, std::string(text)});
}

std::unexpected<HelperReply> refusal(std::string_view text) {
  return std::unexpected(HelperReply{helper::exit_code::refused, std::string(text)});
}

}  // namespace

std::expected<MoveOrder, HelperReply> decodeMove(std::string_view from, std::string_view to,
                                                 HostSystem system) {
  const auto source = split(from);
  const auto target = split(to);
  if (!source || !target) return malformed("Not a path of a startup item");
  if (source->folder != target->folder) return refusal("The two paths are not in the same folder");

  const auto folders = helper::systemFoldersOf(system);
  const auto folder = std::ranges::find(folders, source->folder, &helper::SystemStartupFolder::path);
  if (folder == folders.end()) return refusal("The folder is not one that the helper changes");

  MoveOrder order{&*folder, std::string(source->name), std::string(target->name),
                  MoveOrder::Direction::putAway};
  if (isItemOf(*folder, source->name) && isPutAwayNameOf(target->name, source->name)) return order;

  order.direction = MoveOrder::Direction::bringBack;
  if (isItemOf(*folder, target->name) && isPutAwayNameOf(source->name, target->name)) return order;
  return refusal("Only Vorli's own extensions may be added or taken off");
}

}  // namespace vorli::daemon
