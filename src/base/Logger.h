#pragma once

#include <concepts>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorli {

enum class LogLevel { debug, info, standard, error, fault };

/// One finished line. Dynamic texts that were not marked public are already hidden.
struct LogRecord {
  LogLevel level;
  std::string_view subsystem;
  std::string_view category;
  std::string message;
};

/// One value for a placeholder of a log format.
class LogArgument {
 public:
  template <std::integral Number>
  LogArgument(Number number) : value_(static_cast<long long>(number)) {}
  LogArgument(unsigned long long number) : value_(number) {}
  LogArgument(unsigned long number) : value_(static_cast<unsigned long long>(number)) {}
  LogArgument(double number) : value_(number) {}
  LogArgument(std::string_view text) : value_(text) {}
  LogArgument(const std::string& text) : value_(std::string_view(text)) {}
  LogArgument(const char* text) : value_(std::string_view(text)) {}

  const auto& value() const { return value_; }

 private:
  std::variant<long long, unsigned long long, double, std::string_view> value_;
};

/// Fills a format in the notation of the platform log: printf's conversions, each with an optional list of
/// annotations in braces (`%{public}s`, `%{bool,public}d`, `%{private}d`). A text without `public` becomes
/// `<private>`; numbers are public unless marked private; `bool` prints true or false. Length modifiers are
/// accepted but not needed. A placeholder without a value becomes `<missing>`.
std::string formatLogMessage(std::string_view format, const std::vector<LogArgument>& arguments);

/// The log of one class. Thread-safe.
class Logger {
 public:
  using Sink = std::function<void(const LogRecord&)>;

  constexpr Logger(std::string_view subsystem, std::string_view category)
      : subsystem_(subsystem), category_(category) {}

  template <typename... Arguments>
  void debug(std::string_view format, const Arguments&... arguments) const {
    write(LogLevel::debug, format, {LogArgument(arguments)...});
  }
  template <typename... Arguments>
  void info(std::string_view format, const Arguments&... arguments) const {
    write(LogLevel::info, format, {LogArgument(arguments)...});
  }
  template <typename... Arguments>
  void log(std::string_view format, const Arguments&... arguments) const {
    write(LogLevel::standard, format, {LogArgument(arguments)...});
  }
  template <typename... Arguments>
  void error(std::string_view format, const Arguments&... arguments) const {
    write(LogLevel::error, format, {LogArgument(arguments)...});
  }
  template <typename... Arguments>
  void fault(std::string_view format, const Arguments&... arguments) const {
    write(LogLevel::fault, format, {LogArgument(arguments)...});
  }

  /// Sends every line of the process to `sink`, which must be thread-safe. Without a sink, lines are dropped.
  /// Returns the previous sink.
  static Sink setSink(Sink sink);

 private:
  void write(LogLevel level, std::string_view format, const std::vector<LogArgument>& arguments) const;

  std::string_view subsystem_;
  std::string_view category_;
};

inline constexpr std::string_view logSubsystem = "com.kv.vorli";

}  // namespace vorli
