#include "ui/loop/QtScheduler.h"

#include "base/Assert.h"
#include "ui/loop/TimerQueue.h"
#include "ui/loop/WakeTimer.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>
#include <chrono>
#include <deque>
#include <mutex>
#include <utility>

namespace vorli::ui {
namespace {

double monotonicSeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Type of the event that announces one more piece of posted work.
int workType() {
  static const int type = QEvent::registerEventType();
  return type;
}

}  // namespace

class QtScheduler::Loop final : public QObject {
 public:
  TimerQueue queue;

  void arm() { timer_.set(queue.nextWake()); }

  void post(Work work) {
    {
      const std::lock_guard guard(lock_);
      posted_.push_back(std::move(work));
    }
    QCoreApplication::postEvent(this, new QEvent(static_cast<QEvent::Type>(workType())));
  }

  /// Work that is destroyed here may post more.
  void dropPosted() {
    while (takePosted()) {
    }
  }

 private:
  Work takePosted() {
    const std::lock_guard guard(lock_);
    if (posted_.empty()) return nullptr;
    Work work = std::move(posted_.front());
    posted_.pop_front();
    return work;
  }

  // Runs one piece of work per event: it may run a nested event loop, in which the next piece has its turn.
  void customEvent(QEvent*) override {
    if (auto work = takePosted()) work();
  }

  void runDue() {
    const double now = monotonicSeconds();
    const auto newest = queue.newest();
    while (auto work = queue.takeDue(now, newest)) {
      arm();  // before the work, which may run a nested event loop
      (*work)();
    }
    arm();
  }

  WakeTimer timer_{[this] { runDue(); }};
  std::mutex lock_;
  std::deque<Work> posted_;
};

QtScheduler::QtScheduler() : loop_(std::make_unique<Loop>()) {}

QtScheduler::~QtScheduler() {
  // Objects held by dropped work may cancel or post when they are destroyed, so the loop must still exist.
  { const auto dropped = std::exchange(loop_->queue, {}); }
  loop_->dropPosted();
}

double QtScheduler::now() const {
  return monotonicSeconds();
}

void QtScheduler::post(Work work) {
  loop_->post(std::move(work));
}

Scheduler::TimerId QtScheduler::after(double seconds, Work work, Precision precision) {
  VORLI_ASSERT(QThread::currentThread() == loop_->thread());
  const auto timer = loop_->queue.add(now(), seconds, std::move(work), precision);
  loop_->arm();
  return timer;
}

void QtScheduler::cancel(TimerId timer) {
  VORLI_ASSERT(QThread::currentThread() == loop_->thread());
  loop_->queue.cancel(timer);
  loop_->arm();
}

}  // namespace vorli::ui
