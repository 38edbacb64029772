#pragma once

#include "insights/CulpritFormatter.h"

#include <string>
#include <vector>

namespace vorli {

/// The sentence that names who uses the most memory, as a view shows it: plain pieces of text, and names that
/// can be pressed to quit the application.
class CulpritSentence {
 public:
  struct Segment {
    enum class Kind { text, app };
    Kind kind;
    std::string text;  // of an app: its name

    bool operator==(const Segment&) const = default;
  };

  /// At least one name.
  explicit CulpritSentence(const CulpritFormatter::CulpritData& data);

  const std::vector<Segment>& segments() const { return segments_; }

 private:
  std::vector<Segment> segments_;
};

/// The texts of a name that can be pressed.
struct AppNameChip {
  static std::string helpText(const std::string& name) { return "Click to quit " + name; }
  static std::string accessibilityLabel(const std::string& name) { return "Quit " + name; }
  static std::string accessibilityHint(const std::string& name) {
    return "Closes " + name + " right away. It can still launch later.";
  }
};

}  // namespace vorli
