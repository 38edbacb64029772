#include "contract/ExitCode.h"
#include "daemon/MoveOrder.h"
#include "tests/fuzz/Fuzz.h"

#include <cerrno>

using namespace vorli::daemon;

namespace {

bool isPlainName(std::string_view name) {
  return !name.empty() && name.size() <= 255 && name.find('/') == name.npos && !name.starts_with('.') &&
         name.find('\0') == name.npos;
}

std::string pathOf(const MoveOrder& order, std::string_view name) {
  return std::string(order.folder->path) + "/" + std::string(name);
}

}  // namespace

/// The first line is the path to move, the rest the path that it moves to.
void fuzz(std::string_view bytes) {
  const auto end = bytes.find('\n');
  const auto from = bytes.substr(0, end);
  const auto to = end == bytes.npos ? std::string_view() : bytes.substr(end + 1);
  const auto order = decodeMove(from, to);
  const auto back = decodeMove(to, from);
  FUZZ_CHECK(order.has_value() == back.has_value());
  if (!order) {
    FUZZ_CHECK(order.error().exitCode == EINVAL ||
               order.error().exitCode == vorli::helper::exit_code::refused);
    FUZZ_CHECK(!order.error().output.empty());
    return;
  }
  FUZZ_CHECK(isPlainName(order->fromName) && isPlainName(order->toName));
  FUZZ_CHECK(pathOf(*order, order->fromName) == from && pathOf(*order, order->toName) == to);
  FUZZ_CHECK(back->fromName == order->toName && back->toName == order->fromName);
  FUZZ_CHECK(back->folder == order->folder && back->direction != order->direction);
  const bool grows = order->toName.starts_with(order->fromName);
  FUZZ_CHECK(grows == (order->direction == MoveOrder::Direction::putAway));
}
