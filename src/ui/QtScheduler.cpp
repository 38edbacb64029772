#include "ui/QtScheduler.h"

#include "base/Assert.h"
#include "ui/TimerQueue.h"
#include "ui/WakeTimer.h"

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

// Tells the loop that one more piece of work waits.
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

  /// Work that dies here may post more.
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

  // One piece an event: it may run an event loop of its own, in which the next one has its turn.
  void customEvent(QEvent*) override {
    if (auto work = takePosted()) work();
  }

  void runDue() {
    const double now = monotonicSeconds();
    const auto newest = queue.newest();
    while (auto work = queue.takeDue(now, newest)) {
      arm();  // before the work: it may run an event loop of its own
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
  // What dropped work holds may cancel or post on its way out, so it goes while the loop still stands.
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
