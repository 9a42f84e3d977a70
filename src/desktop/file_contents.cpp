#include "desktop/file_contents.h"

#include <QFile>
#include <QSaveFile>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "desktop/base/byte_size.h"
#include "desktop/base/failure.h"

namespace linewatch::desktop {

namespace {

namespace fs = std::filesystem;

/// Of a file that is open for reading, negative where it could not be opened. Opening a pipe waits for no
/// writer, as a stream would.
class Descriptor {
 public:
  explicit Descriptor(const fs::path& file)
      : number_(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }

 private:
  int number_;
};

std::string lastFailure() { return std::generic_category().message(errno); }

/// Until there is more to read, or an end. An error says why there is none.
class Wait {
 public:
  explicit Wait(const ReadingLimits& limits) : limits_(limits) {}

  std::optional<std::string> forMoreIn(int descriptor) const {
    constexpr int kStepMilliseconds = 50;
    pollfd awaited{.fd = descriptor, .events = POLLIN, .revents = 0};
    for (int ready = 0; ready == 0; ready = ::poll(&awaited, 1, kStepMilliseconds)) {
      if (limits_.stop.stop_requested()) return "no longer wanted";
      if (limits_.time && Clock::now() - start_ > *limits_.time) return "its end did not come in time";
    }
    return std::nullopt;
  }

 private:
  using Clock = std::chrono::steady_clock;
  const ReadingLimits& limits_;
  const Clock::time_point start_ = Clock::now();
};

/// Of a name such as /dev/stdout: it stands for what a process has open, even where that is a plain file, and
/// no other file can take the place of that.
bool namesSomethingOpen(const fs::path& file) {
  std::error_code ignored;
  return fs::canonical(file.parent_path(), ignored).string().starts_with("/proc/");
}

/// What a name such as /dev/stdout stands for in this process; absent for other names. To open it by the name
/// would begin anew at a place of its own in the file, and whoever has it open too would write over it.
std::optional<int> ownDescriptor(const fs::path& file) {
  std::error_code ignored;
  if (fs::canonical(file.parent_path(), ignored) != fs::canonical("/proc/self/fd", ignored))
    return std::nullopt;
  const std::string name = file.filename().string();
  int number = 0;
  const auto [end, fault] = std::from_chars(name.data(), name.data() + name.size(), number);
  return fault == std::errc() && end == name.data() + name.size() ? std::optional(number) : std::nullopt;
}

/// Where links lead; the last of them where there are too many.
fs::path followed(fs::path file) {
  constexpr int kMostLinks = 40;
  std::error_code error;
  for (int links = 0; links < kMostLinks && fs::is_symlink(file, error) && !namesSomethingOpen(file); ++links)
    file = file.parent_path() / fs::read_symlink(file, error);
  return file;
}

bool isReplaceable(const fs::path& file) {
  std::error_code ignored;
  const fs::file_type type = fs::symlink_status(file, ignored).type();
  return (type == fs::file_type::regular || type == fs::file_type::not_found) && !namesSomethingOpen(file);
}

bool isWritten(QFileDevice& to, std::string_view bytes) {
  const auto size = static_cast<qint64>(bytes.size());
  return to.write(bytes.data(), size) == size && to.flush();
}

/// Qt gives no reason where only a part could be written.
std::string whyNotWritten(const QFileDevice& to) {
  const bool isKnown = to.error() != QFileDevice::NoError && to.error() != QFileDevice::UnspecifiedError;
  return isKnown ? to.errorString().toStdString() : "no room for all of it";
}

}  // namespace

Outcome<std::string> contentsOf(const fs::path& file, const ReadingLimits& limits) {
  const auto failed = [&](const std::string& why) { return failure(file.string(), "", why); };
  const Descriptor open(file);
  if (open.number() < 0) return failed(lastFailure());
  const Wait wait(limits);
  std::string contents;
  std::array<char, 65536> chunk;
  for (;;) {
    if (const auto why = wait.forMoreIn(open.number())) return failed(*why);
    const ssize_t size = ::read(open.number(), chunk.data(), chunk.size());
    if (size == 0) return contents;
    // Another reader of a pipe may have been faster.
    if (size < 0 && errno != EAGAIN && errno != EINTR) return failed(lastFailure());
    if (size > 0) contents.append(chunk.data(), static_cast<std::size_t>(size));
    if (contents.size() > limits.bytes) return failed("it is larger than " + sizeInWords(limits.bytes));
  }
}

std::optional<Error> writeWhole(const fs::path& file, std::string_view bytes) {
  const fs::path target = followed(file);
  const QString name = QString::fromStdString(target.string());
  const auto failed = [&](const QFileDevice& to) { return failure(file.string(), "", whyNotWritten(to)); };
  if (isReplaceable(target)) {
    QSaveFile to(name);
    return to.open(QIODevice::WriteOnly) && isWritten(to, bytes) && to.commit() ? std::nullopt
                                                                                : std::optional(failed(to));
  }
  QFile to(name);
  const auto descriptor = ownDescriptor(target);
  const bool isOpen = descriptor ? to.open(*descriptor, QIODevice::WriteOnly) : to.open(QIODevice::WriteOnly);
  return isOpen && isWritten(to, bytes) ? std::nullopt : std::optional(failed(to));
}

}  // namespace linewatch::desktop
