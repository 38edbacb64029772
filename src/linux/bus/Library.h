#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <sdbus-c++/sdbus-c++.h>
#include <string>
#include <utility>

/// Hides the differences between versions 1 and 2 of sdbus-c++. Debian 12 has the first, Debian 13 the
/// second. Other files include this header instead of the library's, and use one spelling for both.
namespace vorli::linuxhost::bus {

// The header came with version 2. The library has no macro for its version.
#if __has_include(<sdbus-c++/VTableItems.h>)

using ErrorName = sdbus::Error::Name;
using ServiceName = sdbus::ServiceName;

/// First argument of a reply callback; false when the call succeeded.
using Failure = std::optional<sdbus::Error>;

/// Handles one pending message or expired timeout. False when there was nothing to handle.
inline bool processNext(sdbus::IConnection& connection) {
  return connection.processPendingEvent();
}

/// Time until the library's next timeout; empty when it has none.
inline std::optional<std::chrono::microseconds> timeLeft(const sdbus::IConnection::PollData& data) {
  const auto left = data.getRelativeTimeout();
  return left == std::chrono::microseconds::max() ? std::nullopt : std::optional(left);
}

/// Calls `handler` for each message that the rule matches, for as long as the slot lives.
[[nodiscard]] inline sdbus::Slot match(sdbus::IConnection& connection, const std::string& rule,
                                       std::function<void(sdbus::Message&)> handler) {
  return connection.addMatch(
      rule, [handler = std::move(handler)](sdbus::Message message) { handler(message); }, sdbus::return_slot);
}

/// Bus name of the sender of the message that the object is handling now.
inline std::string currentSender(const sdbus::IObject& object) {
  return object.getCurrentlyProcessedMessage().getSender();
}

/// Adds a method to an object. Call it before `publish`.
template <typename Function>
void addMethod(sdbus::IObject& object, const std::string& interface, const std::string& name,
               Function implementation) {
  object.addVTable(sdbus::registerMethod(name).implementedAs(std::move(implementation)))
      .forInterface(interface);
}

/// Adds a property in the same way; `getter` returns its value.
template <typename Function>
void addProperty(sdbus::IObject& object, const std::string& interface, const std::string& name,
                 Function getter) {
  object.addVTable(sdbus::registerProperty(name).withGetter(std::move(getter))).forInterface(interface);
}

/// Adds a signal without arguments in the same way.
inline void addSignal(sdbus::IObject& object, const std::string& interface, const std::string& name) {
  object.addVTable(sdbus::registerSignal(name)).forInterface(interface);
}

/// Makes the added members visible to callers.
inline void publish(sdbus::IObject&) {}

#else

using ErrorName = std::string;
using ServiceName = std::string;
using Failure = const sdbus::Error*;

inline bool processNext(sdbus::IConnection& connection) {
  return connection.processPendingRequest();
}

inline std::optional<std::chrono::microseconds> timeLeft(const sdbus::IConnection::PollData& data) {
  return data.getRelativeTimeout();
}

[[nodiscard]] inline sdbus::Slot match(sdbus::IConnection& connection, const std::string& rule,
                                       std::function<void(sdbus::Message&)> handler) {
  return connection.addMatch(rule,
                             [handler = std::move(handler)](sdbus::Message& message) { handler(message); });
}

inline std::string currentSender(const sdbus::IObject& object) {
  return object.getCurrentlyProcessedMessage()->getSender();
}

template <typename Function>
void addMethod(sdbus::IObject& object, const std::string& interface, const std::string& name,
               Function implementation) {
  object.registerMethod(name).onInterface(interface).implementedAs(std::move(implementation));
}

template <typename Function>
void addProperty(sdbus::IObject& object, const std::string& interface, const std::string& name,
                 Function getter) {
  object.registerProperty(name).onInterface(interface).withGetter(std::move(getter));
}

inline void addSignal(sdbus::IObject& object, const std::string& interface, const std::string& name) {
  object.registerSignal(name).onInterface(interface);
}

inline void publish(sdbus::IObject& object) {
  object.finishRegistration();
}

#endif

/// Creates a proxy of the object at `path` of the named service, for calls over `connection`.
[[nodiscard]] inline std::unique_ptr<sdbus::IProxy> proxy(sdbus::IConnection& connection,
                                                          const std::string& service,
                                                          const std::string& path) {
  return sdbus::createProxy(connection, ServiceName(service), sdbus::ObjectPath(path));
}

/// Creates an object of this program at `path`.
[[nodiscard]] inline std::unique_ptr<sdbus::IObject> object(sdbus::IConnection& connection,
                                                            const std::string& path) {
  return sdbus::createObject(connection, sdbus::ObjectPath(path));
}

}  // namespace vorli::linuxhost::bus
