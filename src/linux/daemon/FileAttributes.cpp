#include "linux/daemon/FileAttributes.h"

#include "contract/ExitCode.h"
#include "daemon/SystemError.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <string_view>
#include <sys/xattr.h>
#include <vector>

namespace vorli::linuxhost {

namespace {

constexpr std::size_t largestAttribute = 64 * 1024;  // the kernel's own limit, for the list of names as well

std::expected<std::vector<std::string>, daemon::SystemError> namesOf(const posix::FileDescriptor& file) {
  std::string list(largestAttribute, '\0');
  const auto size = ::flistxattr(file.get(), list.data(), list.size());
  if (size < 0 && errno != ENOTSUP) return daemon::lastError();
  std::vector<std::string> names;
  std::string_view rest(list.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
  while (!rest.empty()) {
    names.emplace_back(rest.substr(0, rest.find('\0')));
    rest.remove_prefix(names.back().size() + 1);
  }
  return names;
}

std::optional<std::string> valueOf(const posix::FileDescriptor& file, const std::string& name) {
  std::string value(largestAttribute, '\0');
  const auto size = ::fgetxattr(file.get(), name.c_str(), value.data(), value.size());
  if (size < 0) return std::nullopt;
  value.resize(static_cast<std::size_t>(size));
  return value;
}

std::unexpected<daemon::SystemError> cannotKeep(const std::string& name) {
  return std::unexpected(
      daemon::SystemError{helper::exit_code::refused, "The file's attribute " + name + " cannot be kept"});
}

}  // namespace

std::expected<void, daemon::SystemError> copyAttributes(const posix::FileDescriptor& from,
                                                        const posix::FileDescriptor& to) {
  const auto wanted = namesOf(from);
  if (!wanted) return std::unexpected(wanted.error());
  for (const auto& name : *wanted) {
    const auto value = valueOf(from, name);
    if (!value) return cannotKeep(name);
    // A security module labels new files itself, and forbids others to do so.
    if (valueOf(to, name) == value) continue;
    if (::fsetxattr(to.get(), name.c_str(), value->data(), value->size(), 0) != 0) return cannotKeep(name);
  }
  // Removes attributes that the new file inherited from its folder.
  const auto present = namesOf(to);
  if (!present) return std::unexpected(present.error());
  for (const auto& name : *present) {
    if (std::ranges::find(*wanted, name) != wanted->end() || name.starts_with("security.")) continue;
    if (::fremovexattr(to.get(), name.c_str()) != 0) return cannotKeep(name);
  }
  return {};
}

}  // namespace vorli::linuxhost
