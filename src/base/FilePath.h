#pragma once

#include <string>
#include <string_view>

namespace vorli {

// Parts of an absolute path, which may end in slashes. Views are into the given text.

/// "/a/b.plist" gives "b.plist", and "/" gives "/".
std::string_view lastPathComponent(std::string_view path);

/// The text after the last dot of the last component. Empty without a dot, and when there is no text before
/// or after it.
std::string_view pathExtension(std::string_view path);

/// The path without its extension and the dot in front of it.
std::string_view deletingPathExtension(std::string_view path);

/// The last component without its extension.
std::string_view fileStem(std::string_view path);

/// The last component as a text of its own.
std::string fileName(std::string_view path);

/// The path without its last component; "/" for an entry of the root folder, and for "/" itself.
std::string_view parentPath(std::string_view path);

/// The path with `extension`, its dot included, after it.
std::string withExtension(const std::string& path, std::string_view extension);

/// True for a path below the root: the root counts as a component.
bool hasTwoComponents(std::string_view path);

}  // namespace vorli
