#pragma once

#include "insights/CulpritFormatter.h"

#include <string>
#include <vector>

namespace vorli {

/// The sentence that names the largest memory users, split for display into plain text and names that can be
/// clicked to quit the application.
class CulpritSentence {
 public:
  struct Segment {
    enum class Kind { text, app };
    Kind kind;
    std::string text;  // for an app, its name

    bool operator==(const Segment&) const = default;
  };

  /// `data` has at least one name.
  explicit CulpritSentence(const CulpritFormatter::CulpritData& data);

  const std::vector<Segment>& segments() const { return segments_; }

  /// Says that an application cannot be asked to quit. One segment per word, so that a long name lets the
  /// line break anywhere.
  static std::vector<Segment> closedByHand(const std::string& name);
  /// The same sentence as one text.
  static std::string closedByHandText(const std::string& name);

 private:
  std::vector<Segment> segments_;
};

/// Texts of a clickable application name.
struct AppNameChip {
  static std::string helpText(const std::string& name) { return "Click to quit " + name; }
  static std::string accessibilityLabel(const std::string& name) { return "Quit " + name; }
  static std::string accessibilityHint(const std::string& name) {
    return "Closes " + name + " right away. It can still launch later.";
  }
};

}  // namespace vorli
