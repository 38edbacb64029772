#pragma once

#include <compare>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace vorli {

/// Immutable text shared by many rows: copying it only copies a pointer. Empty when default-constructed.
class SharedText {
 public:
  SharedText() = default;
  SharedText(std::string text) : text_(std::make_shared<const std::string>(std::move(text))) {}
  SharedText(const char* text) : SharedText(std::string(text)) {}

  std::string_view view() const { return text_ ? std::string_view(*text_) : std::string_view(); }
  operator std::string_view() const { return view(); }
  bool empty() const { return view().empty(); }

  friend bool operator==(const SharedText& a, const SharedText& b) {
    return a.text_ == b.text_ || a.view() == b.view();
  }
  friend bool operator==(const SharedText& a, std::string_view b) { return a.view() == b; }
  friend bool operator==(const SharedText& a, const char* b) { return a.view() == b; }
  friend std::ostream& operator<<(std::ostream& out, const SharedText& text) { return out << text.view(); }

 private:
  std::shared_ptr<const std::string> text_;
};

}  // namespace vorli
