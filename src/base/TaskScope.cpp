#include "base/TaskScope.h"

#include <algorithm>
#include <utility>

namespace vorli {

TaskScope::~TaskScope() {
  while (!contexts_.empty()) {  // destroying a flow may spawn another
    for (const auto& weak : std::exchange(contexts_, {})) {
      if (const auto context = weak.lock()) context->abandon();
    }
  }
}

TaskHandle TaskScope::spawn(Task<void> flow) {
  std::erase_if(contexts_, [](const auto& weak) { return weak.expired(); });

  const auto root = std::exchange(flow.handle_, {});
  VORLI_ASSERT(root);
  auto context = std::make_shared<TaskContext>();
  context->adoptRoot(root);
  root.promise().context = context.get();
  contexts_.push_back(context);
  TaskHandle handle{std::weak_ptr<TaskContext>(context)};
  scheduler_.post([resumption = Resumption(root)]() mutable { resumption.resume(); });
  return handle;
}

}  // namespace vorli
