#include "linux/daemon/CallerAuthority.h"

#include "linux/bus/Library.h"
#include "linux/daemon/SharedReply.h"

#include <map>
#include <string>

namespace vorli::linuxhost {

namespace {

constexpr char service[] = "org.freedesktop.PolicyKit1";
constexpr char path[] = "/org/freedesktop/PolicyKit1/Authority";
constexpr char interface[] = "org.freedesktop.PolicyKit1.Authority";

constexpr std::uint32_t neverAskTheUser = 0;
constexpr std::chrono::seconds polkitLimit(3);

using Details = std::map<std::string, std::string>;
/// A caller, identified by its bus name. Serialised by hand, because the library's variant holds a connection
/// of its own.
struct BusNameSubject {
  std::string name;
};

sdbus::Message& operator<<(sdbus::Message& message, const BusNameSubject& subject) {
  message.openStruct("sa{sv}");
  message << "system-bus-name";
  message.openContainer("{sv}");
  message.openDictEntry("sv");
  message << "name";
  message.openVariant("s");
  message << subject.name;
  message.closeVariant();
  message.closeDictEntry();
  message.closeContainer();
  message.closeStruct();
  return message;
}

using Answer = sdbus::Struct<bool, bool, Details>;

daemon::Verdict verdictOf(const Answer& answer) {
  if (std::get<0>(answer)) return daemon::Verdict::granted;
  return std::get<1>(answer) ? daemon::Verdict::authenticationNeeded : daemon::Verdict::denied;
}

}  // namespace

CallerAuthority::CallerAuthority(sdbus::IConnection& connection)
    : polkit_(bus::proxy(connection, service, path)) {}

CallerAuthority::~CallerAuthority() = default;

void CallerAuthority::check(const std::string& caller, std::string_view action, const std::string& subject,
                            OnceReply<daemon::Verdict> reply) {
  const SharedReply answer(std::move(reply));
  const Details details = subject.empty() ? Details() : Details{{"item", subject}};
  try {
    polkit_->callMethodAsync("CheckAuthorization")
        .onInterface(interface)
        .withTimeout(polkitLimit)
        .withArguments(BusNameSubject{caller}, std::string(action), details, neverAskTheUser, std::string())
        .uponReplyInvoke([answer](bus::Failure error, const Answer& result) {
          answer(error ? daemon::Verdict::error : verdictOf(result));
        });
  } catch (const sdbus::Error&) {
    answer(daemon::Verdict::error);
  }
}

}  // namespace vorli::linuxhost
