#include "polish/HelperResultBox.h"

#include <utility>

namespace vorli {

void HelperResultBox::whenFilled(OnceReply<HelperWorkResult> answer) {
  std::unique_lock guard(lock);
  if (!result) {
    callback = std::move(answer);
    return;
  }
  HelperWorkResult copy = *result;
  guard.unlock();
  std::move(answer)(std::move(copy));
}

void HelperResultBox::fill(HelperWorkResult work) {
  std::unique_lock guard(lock);
  result = work;
  auto waiting = std::exchange(callback, OnceReply<HelperWorkResult>());
  guard.unlock();
  std::move(waiting)(std::move(work));
}

}  // namespace vorli
