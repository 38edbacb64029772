#include "startup/WorkQueue.h"

#include "base/AwaitedReply.h"

#include <memory>
#include <utility>

namespace vorli {

WorkQueue::~WorkQueue() {
  background_.abandon();
}

Task<> WorkQueue::run(Work work) {
  AwaitedReply<std::monostate> done(scheduler_);
  waiting_.push_back({std::move(work), done.reply()});
  startNext();
  co_await done;
}

Task<bool> WorkQueue::ask(Question question) {
  const auto answer = std::make_shared<bool>(false);
  Work work = [answer, question = std::move(question)] { *answer = question(); };
  co_await run(std::move(work));
  co_return *answer;
}

void WorkQueue::startNext() {
  if (isUnderWay_ || waiting_.empty()) return;
  auto piece = std::move(waiting_.front());
  waiting_.pop_front();
  isUnderWay_ = true;
  background_.start(std::move(piece.work), [this, done = std::move(piece.done)]() mutable {
    isUnderWay_ = false;
    std::move(done)({});
    startNext();
  });
}

}  // namespace vorli
