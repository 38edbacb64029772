#pragma once

#include "base/OnceReply.h"
#include "base/Scheduler.h"
#include "base/Task.h"
#include "ports/BackgroundWork.h"

#include <deque>
#include <functional>
#include <variant>

namespace vorli {

/// Runs pieces of work on a second thread, one after another in the order in which they were requested. A
/// piece that has started always finishes; pieces that are still waiting when the queue is destroyed are
/// dropped. Main thread.
class WorkQueue {
 public:
  using Work = ports::BackgroundWork::Work;
  using Question = std::function<bool()>;

  WorkQueue(Scheduler& scheduler, ports::BackgroundWork& background)
      : scheduler_(scheduler), background_(background) {}
  ~WorkQueue();
  WorkQueue(const WorkQueue&) = delete;
  WorkQueue& operator=(const WorkQueue&) = delete;

  /// Resumes the caller when the work is done. The work may outlive the waiting flow.
  Task<> run(Work work);
  /// Like `run`, for a question; returns its answer.
  Task<bool> ask(Question question);

 private:
  struct Piece {
    Work work;
    OnceReply<std::monostate> done;
  };

  void startNext();

  Scheduler& scheduler_;
  ports::BackgroundWork& background_;
  std::deque<Piece> waiting_;
  bool isUnderWay_ = false;
};

}  // namespace vorli
