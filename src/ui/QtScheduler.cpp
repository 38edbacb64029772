#include "ui/QtScheduler.h"

#include "base/Assert.h"
#include "ui/TimerQueue.h"

#include <QBasicTimer>
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>
#include <QTimerEvent>
#include <algorithm>
#include <chrono>
#include <cmath>
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

  void arm() {
    const auto wake = queue.nextWake();
    if (!wake) {
      timer_.stop();
      armedFor_ = 0.0;
    } else if (!timer_.isActive() || *wake != armedFor_) {
      armedFor_ = *wake;
      timer_.start(milliseconds(*wake - monotonicSeconds()), Qt::PreciseTimer, this);
    }
  }

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
  // Rounded up: a delay is never cut short. A longer one than a day is armed again on the way.
  static int milliseconds(double seconds) {
    return static_cast<int>(std::ceil(std::clamp(seconds, 0.0, 86400.0) * 1000.0));
  }

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

  void timerEvent(QTimerEvent*) override {
    timer_.stop();
    const double now = monotonicSeconds();
    const auto newest = queue.newest();
    while (auto work = queue.takeDue(now, newest)) {
      arm();  // before the work: it may run an event loop of its own
      (*work)();
    }
    arm();
  }

  QBasicTimer timer_;
  double armedFor_ = 0.0;
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
