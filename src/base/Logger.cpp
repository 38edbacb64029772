#include "base/Logger.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <mutex>

namespace vorli {

namespace {

std::mutex sinkLock;
std::shared_ptr<const Logger::Sink> currentSink;

enum class Privacy { unstated, open, hidden };

struct Placeholder {
  std::string flags;  // printf's flags, width and precision
  char conversion = 0;
  Privacy privacy = Privacy::unstated;
  bool isBool = false;
};

void readAnnotations(std::string_view list, Placeholder& placeholder) {
  while (!list.empty()) {
    const auto comma = list.find(',');
    auto word = list.substr(0, comma);
    while (word.starts_with(' ')) word.remove_prefix(1);
    if (word == "public") placeholder.privacy = Privacy::open;
    if (word == "private" || word == "sensitive") placeholder.privacy = Privacy::hidden;
    if (word == "bool") placeholder.isBool = true;
    if (comma == std::string_view::npos) break;
    list.remove_prefix(comma + 1);
  }
}

// `rest` begins after the percent sign; the placeholder's characters are removed from its front.
Placeholder readPlaceholder(std::string_view& rest) {
  Placeholder placeholder;
  if (rest.starts_with('{')) {
    const auto end = rest.find('}');
    readAnnotations(rest.substr(1, end == std::string_view::npos ? end : end - 1), placeholder);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  while (!rest.empty()) {
    const char c = rest.front();
    rest.remove_prefix(1);
    if (std::string_view("-+ #0123456789.").contains(c)) {
      placeholder.flags += c;
    } else if (!std::string_view("hlqjzt").contains(c)) {
      placeholder.conversion = c;
      break;
    }
  }
  return placeholder;
}

template <typename Number>
std::string printNumber(const std::string& format, Number number) {
  char buffer[128];
  const int length = std::snprintf(buffer, sizeof buffer, format.c_str(), number);
  return {buffer, static_cast<std::size_t>(std::min<int>(std::max(length, 0), sizeof buffer - 1))};
}

std::string print(const Placeholder& placeholder, const LogArgument& argument) {
  const auto& value = argument.value();
  const bool isText = std::holds_alternative<std::string_view>(value);
  if (placeholder.privacy == Privacy::hidden || (isText && placeholder.privacy != Privacy::open))
    return "<private>";
  if (isText) return std::string(std::get<std::string_view>(value));

  if (const auto* real = std::get_if<double>(&value)) {
    const char conversion =
        std::string_view("eEfFgG").contains(placeholder.conversion) ? placeholder.conversion : 'g';
    return printNumber("%" + placeholder.flags + conversion, *real);
  }
  if (const auto* natural = std::get_if<unsigned long long>(&value)) {
    if (placeholder.isBool) return *natural ? "true" : "false";
    const char conversion =
        std::string_view("xXo").contains(placeholder.conversion) ? placeholder.conversion : 'u';
    return printNumber("%" + placeholder.flags + "ll" + conversion, *natural);
  }
  const long long number = std::get<long long>(value);
  if (placeholder.isBool) return number ? "true" : "false";
  const char conversion =
      std::string_view("xXo").contains(placeholder.conversion) ? placeholder.conversion : 'd';
  return printNumber("%" + placeholder.flags + "ll" + conversion, number);
}

}  // namespace

std::string formatLogMessage(std::string_view format, const std::vector<LogArgument>& arguments) {
  std::string message;
  std::size_t next = 0;
  while (!format.empty()) {
    const auto percent = format.find('%');
    message += format.substr(0, percent);
    if (percent == std::string_view::npos) break;
    format.remove_prefix(percent + 1);
    if (format.starts_with('%')) {
      message += '%';
      format.remove_prefix(1);
      continue;
    }
    const auto placeholder = readPlaceholder(format);
    message += next < arguments.size() ? print(placeholder, arguments[next]) : "<missing>";
    ++next;
  }
  return message;
}

Logger::Sink Logger::setSink(Sink sink) {
  auto replacement = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
  const std::lock_guard guard(sinkLock);
  currentSink.swap(replacement);
  return replacement ? *replacement : Sink();
}

void Logger::write(LogLevel level, std::string_view format, const std::vector<LogArgument>& arguments) const {
  std::shared_ptr<const Sink> sink;
  {
    const std::lock_guard guard(sinkLock);
    sink = currentSink;
  }
  if (sink) (*sink)({level, subsystem_, category_, formatLogMessage(format, arguments)});
}

}  // namespace vorli
