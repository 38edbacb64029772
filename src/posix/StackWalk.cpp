#include "posix/StackWalk.h"

#include <unwind.h>

namespace vorli::posix {

namespace {

// The frames of a damaged stack may form a cycle.
constexpr int mostSteps = 256;

struct Visit {
  StackWalk& walk;
  std::uintptr_t start;
  bool isWithin;
  int steps = 0;
};

_Unwind_Reason_Code visitFrame(_Unwind_Context* context, void* given) {
  auto& visit = *static_cast<Visit*>(given);
  int isExact = 0;
  const std::uintptr_t address = _Unwind_GetIPInfo(context, &isExact);
  if (address == visit.start) visit.isWithin = true;
  const bool isBehindOutermost = address == 0;
  if (visit.isWithin && !isBehindOutermost) visit.walk.add({address, isExact == 0});
  return ++visit.steps < mostSteps ? _URC_NO_REASON : _URC_NORMAL_STOP;
}

}  // namespace

void StackWalk::walk(std::uintptr_t start) {
  Visit visit{*this, start, start == 0};
  _Unwind_Backtrace(visitFrame, &visit);
}

void StackWalk::add(StackFrame frame) {
  if (count_ < frames_.size()) frames_[count_++] = frame;
}

}  // namespace vorli::posix
