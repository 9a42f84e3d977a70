#include "app/watched_output.h"

#include <QEventLoop>
#include <QSocketNotifier>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "app/refresh_signal.h"

namespace linewatch::app {

namespace {

/// A pipe: the signal handler may do little more than write to it.
int noticedEnd = -1, noticingEnd = -1;
volatile std::sig_atomic_t mustEnd = 0;

void noteSignal(int signal) {
  const int error = errno;
  const char byte = signal == kRefreshSignal ? 'r' : 'e';
  if (signal == SIGINT || signal == SIGTERM) mustEnd = 1;
  if (signal != SIGPIPE) [[maybe_unused]]
    const auto size = ::write(noticingEnd, &byte, 1);
  errno = error;
}

void openSignalPipe() {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0) {
    noticedEnd = ends[0];
    noticingEnd = ends[1];
  }
}

}  // namespace

WatchedOutput::WatchedOutput(std::function<void()> refresh) : refresh_(std::move(refresh)) {
  mustEnd = 0;
  openSignalPipe();
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    struct sigaction noting {};
    noting.sa_handler = noteSignal;
    // A write to a reader that does not read must end with the command.
    noting.sa_flags = kSignals[i] == kRefreshSignal ? SA_RESTART : 0;
    ::sigaction(kSignals[i], nullptr, &before_[i]);
    // In the background of a script SIGINT is ignored, and stays so.
    const bool isIgnored = before_[i].sa_handler == SIG_IGN && kSignals[i] != SIGPIPE;
    if (!isIgnored) ::sigaction(kSignals[i], &noting, nullptr);
  }
  // Only now can a signal do no harm.
  ::prctl(PR_SET_NAME, kWatchingProcessName);
  signals_ = std::make_unique<QSocketNotifier>(noticedEnd, QSocketNotifier::Read);
  QObject::connect(signals_.get(), &QSocketNotifier::activated, [this] { takeSignals(); });
  // Is woken by errors too, and a pipe without a reader has one.
  reader_ = std::make_unique<QSocketNotifier>(STDOUT_FILENO, QSocketNotifier::Exception);
  QObject::connect(reader_.get(), &QSocketNotifier::activated, [this] { end(0); });
}

WatchedOutput::~WatchedOutput() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) ::sigaction(kSignals[i], &before_[i], nullptr);
  signals_ = nullptr;
  ::close(std::exchange(noticedEnd, -1));
  ::close(std::exchange(noticingEnd, -1));
}

void WatchedOutput::write(std::string_view text) {
  while (!text.empty() && !hasEnded_ && mustEnd == 0) {
    const ssize_t size = ::write(STDOUT_FILENO, text.data(), text.size());
    if (size >= 0)
      text.remove_prefix(static_cast<std::size_t>(size));
    else if (errno != EINTR)
      end(errno == EPIPE ? 0 : errno);
  }
}

int WatchedOutput::run() const {
  QEventLoop loop;
  while (!hasEnded_ && mustEnd == 0) loop.processEvents(QEventLoop::WaitForMoreEvents);
  return error_;
}

void WatchedOutput::takeSignals() {
  char byte = 0;
  bool mustRefresh = false;
  while (::read(noticedEnd, &byte, 1) == 1) mustRefresh = mustRefresh || byte == 'r';
  if (mustEnd == 0 && mustRefresh) refresh_();
}

void WatchedOutput::end(int error) {
  hasEnded_ = true;
  error_ = error;
  reader_->setEnabled(false);
}

}  // namespace linewatch::app
