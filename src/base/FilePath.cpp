#include "base/FilePath.h"

namespace vorli {

namespace {

std::string_view withoutTrailingSlashes(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return path;
}

}  // namespace

std::string_view lastPathComponent(std::string_view path) {
  path = withoutTrailingSlashes(path);
  return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

std::string_view pathExtension(std::string_view path) {
  const auto name = lastPathComponent(path);
  const auto dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot + 1);
}

std::string_view deletingPathExtension(std::string_view path) {
  const auto extension = pathExtension(path);
  path = withoutTrailingSlashes(path);
  return extension.empty() ? path : path.substr(0, path.size() - extension.size() - 1);
}

std::string_view fileStem(std::string_view path) {
  return lastPathComponent(deletingPathExtension(path));
}

std::string fileName(std::string_view path) {
  return std::string(lastPathComponent(path));
}

std::string_view parentPath(std::string_view path) {
  path = withoutTrailingSlashes(path);
  return withoutTrailingSlashes(path.substr(0, path.rfind('/') + 1));
}

std::string withExtension(const std::string& path, std::string_view extension) {
  return path + std::string(extension);
}

bool hasTwoComponents(std::string_view path) {
  return path.starts_with('/') && withoutTrailingSlashes(path) != "/";
}

}  // namespace vorli
