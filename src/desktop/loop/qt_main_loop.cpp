#include "desktop/loop/qt_main_loop.h"

#include <QMetaObject>
#include <QSocketNotifier>
#include <QThread>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <string>
#include <system_error>

#include <sys/timerfd.h>
#include <unistd.h>

#include "machine/stderr_log.h"

namespace linewatch::desktop {

namespace {

// A longer timer never fires in practice. The limit keeps the kernel's arithmetic far from overflow.
constexpr Seconds kLongestInterval{100.0 * 365 * 86400};
constexpr Seconds kShortestRepeat{0.001};

Seconds orderly(Seconds interval, bool repeats) {
  const Seconds shortest = repeats ? kShortestRepeat : Seconds(0);
  // The comparison makes NaN the shortest interval.
  return interval > shortest ? std::min(interval, kLongestInterval) : shortest;
}

timespec toTimespec(Seconds time) {
  const double whole = std::floor(time.count());
  const double nanoseconds = std::ceil((time.count() - whole) * 1e9);
  return nanoseconds >= 1e9 ? timespec{static_cast<time_t>(whole) + 1, 0}
                            : timespec{static_cast<time_t>(whole), static_cast<long>(nanoseconds)};
}

}  // namespace

/// The scheduled timers, in the order in which they fire, and the kernel timer for the first of them.
struct QtMainLoop::Timers {
  Timers() : descriptor(timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
    if (descriptor >= 0) return;
    // The platform is still being made, so its log cannot be used.
    const std::string why = std::generic_category().message(errno);
    StderrLog(false).write({LogLevel::error, kLogCategory, "cannot make a timer: %@", {why}});
    std::abort();
  }
  ~Timers() { close(descriptor); }
  Timers(const Timers&) = delete;
  Timers& operator=(const Timers&) = delete;

  void arm() const {
    itimerspec setting{};
    if (!byTurn.empty())
      setting.it_value = toTimespec(std::max(byTurn.begin()->first.first - skipped.load(), Seconds(1e-9)));
    timerfd_settime(descriptor, TFD_TIMER_ABSTIME, &setting, nullptr);
  }

  int descriptor;
  /// The time that was skipped, which the kernel's clock does not count. Any thread.
  std::atomic<Seconds> skipped{Seconds(0)};
  std::map<Turn, std::shared_ptr<class QtTimer>> byTurn;
  std::uint64_t scheduledCount = 0;
};

class QtTimer final : public Timer, public std::enable_shared_from_this<QtTimer> {
 public:
  QtTimer(std::weak_ptr<QtMainLoop::Timers> timers, Seconds due, std::optional<Seconds> repeatsEvery,
          std::function<void()> action)
      : timers_(std::move(timers)), due_(due), repeatsEvery_(repeatsEvery), action_(std::move(action)) {}

  void setTolerance(Seconds tolerance) override {
    tolerance_ = tolerance > Seconds(0) ? tolerance : Seconds(0);
    if (isValid()) enqueue();
  }
  bool isValid() const override { return turn_.has_value() && !timers_.expired(); }
  void invalidate() override {
    dequeue();
    repeatsEvery_.reset();
    action_ = nullptr;
  }

  void enqueue() {
    dequeue();
    const auto timers = timers_.lock();
    if (!timers) return;
    turn_ = {wakeUp(), timers->scheduledCount++};
    timers->byTurn.emplace(*turn_, shared_from_this());
    timers->arm();
  }

  void fire(Seconds now) {
    const std::function<void()> action = action_;
    if (repeatsEvery_) {
      skipTo(now);
      enqueue();
    } else {
      invalidate();
    }
    if (action) action();
  }

 private:
  Seconds wakeUp() const {
    const Seconds shared{std::ceil(due_.count())};
    return shared - due_ <= tolerance_ ? shared : due_;
  }
  // After a delay a repeating timer fires once, and not once for each missed interval.
  void skipTo(Seconds now) {
    const double missed = std::floor((now - due_) / *repeatsEvery_);
    due_ += *repeatsEvery_ * (std::max(missed, 0.0) + 1);
  }
  void dequeue() {
    if (!turn_) return;
    if (const auto timers = timers_.lock()) {
      const auto keepAlive = shared_from_this();
      timers->byTurn.erase(*turn_);
      timers->arm();
    }
    turn_.reset();
  }

  std::weak_ptr<QtMainLoop::Timers> timers_;
  Seconds due_;
  std::optional<Seconds> repeatsEvery_;
  Seconds tolerance_{0};
  std::function<void()> action_;
  std::optional<QtMainLoop::Turn> turn_;
};

QtMainLoop::QtMainLoop(std::optional<Date> startsAt, Clock clock)
    : startsAt_(startsAt), clock_(clock), timers_(std::make_shared<Timers>()), madeAt_(uptime()) {}

QtMainLoop::~QtMainLoop() = default;

Seconds QtMainLoop::uptime() const {
  timespec time{};
  clock_gettime(CLOCK_BOOTTIME, &time);
  return timers_->skipped.load() + Seconds(static_cast<double>(time.tv_sec)) +
         std::chrono::nanoseconds(time.tv_nsec);
}

void QtMainLoop::skip(Seconds time) {
  timers_->skipped = timers_->skipped.load() + time;
  timers_->arm();
}

Date QtMainLoop::now() const {
  if (startsAt_ && clock_ == Clock::frozen) return *startsAt_;
  if (startsAt_) return *startsAt_ + (uptime() - madeAt_);
  return std::chrono::time_point_cast<Seconds>(std::chrono::system_clock::now());
}

bool QtMainLoop::isMainThread() const { return QThread::currentThread() == receiver_.thread(); }

void QtMainLoop::dispatchAsync(std::function<void()> action) {
  {
    const MutexLock lock(mutex_);
    dispatched_.push_back(std::move(action));
  }
  wakeForDispatched();
}

// scripts/known_races names this function: the sanitizer takes Qt's delivery of the event for a race.
void QtMainLoop::wakeForDispatched() {
  QMetaObject::invokeMethod(
      &receiver_, [this] { runNextDispatched(); }, Qt::QueuedConnection);
}

void QtMainLoop::runNextDispatched() {
  std::function<void()> action;
  {
    const MutexLock lock(mutex_);
    action = std::move(dispatched_.front());
    dispatched_.pop_front();
  }
  action();
}

std::shared_ptr<Timer> QtMainLoop::scheduleTimer(Seconds interval, bool repeats,
                                                 std::function<void()> action) {
  if (!notifier_) {
    notifier_ = std::make_unique<QSocketNotifier>(timers_->descriptor, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, &receiver_, [this] { fireDueTimers(); });
  }
  const Seconds orderlyInterval = orderly(interval, repeats);
  auto timer =
      std::make_shared<QtTimer>(timers_, uptime() + orderlyInterval,
                                repeats ? std::optional(orderlyInterval) : std::nullopt, std::move(action));
  timer->enqueue();
  return timer;
}

void QtMainLoop::fireDueTimers() {
  std::uint64_t expirations = 0;
  [[maybe_unused]] const auto size = read(timers_->descriptor, &expirations, sizeof expirations);
  const Seconds now = uptime();
  // A timer that an action schedules fires in a later turn. Otherwise such actions could block the loop's
  // other work.
  const std::uint64_t scheduledBefore = timers_->scheduledCount;
  const std::shared_ptr<Timers> timers = timers_;
  for (auto next = timers->byTurn.begin(); next != timers->byTurn.end() && next->first.first <= now;
       next = timers->byTurn.begin()) {
    if (next->first.second >= scheduledBefore) break;
    const std::shared_ptr<QtTimer> timer = next->second;
    timer->fire(now);
  }
  timers->arm();
}

}  // namespace linewatch::desktop
