#pragma once

#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

namespace vorli::scripted {

/// How a scripted program behaves: lines of a key and a value, read again for each request.
class Conduct {
 public:
  explicit Conduct(std::string path) : path_(std::move(path)) {}

  std::string text(const std::string& key, const std::string& fallback) const {
    std::ifstream file(path_);
    std::string found, line;
    while (file >> found && std::getline(file >> std::ws, line)) {
      if (found == key) return line;
    }
    return fallback;
  }
  int number(const std::string& key, int fallback) const {
    return std::atoi(text(key, std::to_string(fallback)).c_str());
  }

  /// Writes a line for the test.
  static void note(const std::string& path, const std::string& line) {
    std::ofstream(path, std::ios::app) << line + "\n" << std::flush;
  }

 private:
  std::string path_;
};

}  // namespace vorli::scripted
