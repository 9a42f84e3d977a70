#include "shared/file_contents.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <random>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "shared/byte_size.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

namespace fs = std::filesystem;

/// An open file, closed at the end of its scope. The number is negative when it could not be opened.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }
  /// False when written bytes were lost, which some file systems report only here.
  bool close() {
    const int number = std::exchange(number_, -1);
    return number < 0 || ::close(number) == 0;
  }

 private:
  int number_;
};

/// "FILE: why" for the value of `errno`.
Error systemFailure(const fs::path& file) {
  const std::error_code error(errno, std::generic_category());
  return failure(failureCodeOf(error), file.string(), "", error.message());
}

/// Waits for bytes of an open file within the limits. The time runs from the construction.
class Wait {
 public:
  Wait(const fs::path& file, const ReadingLimits& limits) : file_(file), limits_(limits) {}

  /// Returns when there is more to read, or at the end of the file. An error says which limit was reached.
  std::optional<Error> forMoreIn(int descriptor) const {
    constexpr int kStepMilliseconds = 50;
    pollfd awaited{.fd = descriptor, .events = POLLIN, .revents = 0};
    for (int ready = 0; ready == 0; ready = ::poll(&awaited, 1, kStepMilliseconds)) {
      if (limits_.stop.stop_requested())
        return failure(FailureCode::cancelled, file_.string(), "", "no longer wanted");
      if (limits_.time && Clock::now() - start_ > *limits_.time)
        return failure(FailureCode::timedOut, file_.string(), "", "it did not end in time");
    }
    return std::nullopt;
  }

 private:
  using Clock = std::chrono::steady_clock;
  const fs::path& file_;
  const ReadingLimits& limits_;
  const Clock::time_point start_ = Clock::now();
};

/// True for a name such as /dev/stdout, which stands for an open file of a process. A rename to such a name
/// fails, even when the open file is a regular one.
bool namesOpenFile(const fs::path& file) {
  std::error_code ignored;
  return fs::canonical(file.parent_path(), ignored).string().starts_with("/proc/");
}

/// The descriptor that a name such as /dev/stdout stands for in this process; absent for other names. Opening
/// the name instead would give a second file offset, and the two writers would overwrite each other.
std::optional<int> ownDescriptor(const fs::path& file) {
  std::error_code ignored;
  if (fs::canonical(file.parent_path(), ignored) != fs::canonical("/proc/self/fd", ignored))
    return std::nullopt;
  const std::string name = file.filename().string();
  int number = 0;
  const auto [end, fault] = std::from_chars(name.data(), name.data() + name.size(), number);
  return fault == std::errc() && end == name.data() + name.size() ? std::optional(number) : std::nullopt;
}

/// The target of a chain of links; the last link of the first 40 when the chain is longer.
fs::path linkTarget(fs::path file) {
  constexpr int kMostLinks = 40;
  std::error_code error;
  for (int links = 0; links < kMostLinks && fs::is_symlink(file, error) && !namesOpenFile(file); ++links)
    file = file.parent_path() / fs::read_symlink(file, error);
  return file;
}

bool isReplaceable(const fs::path& file) {
  std::error_code ignored;
  const fs::file_type type = fs::symlink_status(file, ignored).type();
  return (type == fs::file_type::regular || type == fs::file_type::not_found) && !namesOpenFile(file);
}

/// False with `errno` set when it failed.
bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t size = ::write(descriptor, bytes.data(), bytes.size());
    if (size < 0 && errno != EINTR) return false;
    if (size > 0) bytes.remove_prefix(static_cast<std::size_t>(size));
  }
  return true;
}

/// Makes the names in the folder outlast a power cut, as far as the file system can.
void syncNamesIn(const fs::path& folder) {
  const Descriptor open(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (open.number() >= 0) ::fsync(open.number());
}

/// Writes the bytes beside the file and then renames them to it. False with `errno` set when it failed.
bool replace(const fs::path& file, std::string_view bytes) {
  const std::string name = file.string() + "." + std::to_string(std::random_device()());
  Descriptor to(::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (to.number() < 0) return false;
  struct stat old {};
  const bool isNew = ::stat(file.c_str(), &old) != 0;
  const bool isDone = writeAll(to.number(), bytes) &&
                      (isNew || ::fchmod(to.number(), old.st_mode & 07777) == 0) &&
                      ::fsync(to.number()) == 0 && to.close() && ::rename(name.c_str(), file.c_str()) == 0;
  if (isDone) {
    syncNamesIn(file.parent_path());
    return true;
  }
  const int why = errno;
  ::unlink(name.c_str());
  errno = why;
  return false;
}

/// Writes to the open descriptor that the name stands for, else opens the file. False with `errno` set when
/// it failed.
bool writeInPlace(const fs::path& file, std::string_view bytes) {
  if (const auto own = ownDescriptor(file)) return writeAll(*own, bytes);
  Descriptor to(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
  return to.number() >= 0 && writeAll(to.number(), bytes) && to.close();
}

template <class Container>
Outcome<Container> readWhole(const fs::path& file, const ReadingLimits& limits) {
  // Without O_NONBLOCK, opening a pipe would wait for its writer.
  const Descriptor open(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (open.number() < 0) return systemFailure(file);
  const Wait wait(file, limits);
  Container contents;
  std::array<char, 65536> chunk;
  for (;;) {
    if (auto error = wait.forMoreIn(open.number())) return *std::move(error);
    const ssize_t size = ::read(open.number(), chunk.data(), chunk.size());
    if (size == 0) return contents;
    // Another reader of the pipe may have taken the bytes.
    if (size < 0 && errno != EAGAIN && errno != EINTR) return systemFailure(file);
    if (size > 0) contents.insert(contents.end(), chunk.begin(), chunk.begin() + size);
    if (contents.size() > limits.bytes)
      return failure(FailureCode::tooLarge, file.string(), "",
                     "it is larger than " + sizeInWords(limits.bytes));
  }
}

}  // namespace

Outcome<std::string> contentsOf(const fs::path& file, const ReadingLimits& limits) {
  return readWhole<std::string>(file, limits);
}

Outcome<Bytes> bytesOf(const fs::path& file, const ReadingLimits& limits) {
  return readWhole<Bytes>(file, limits);
}

std::optional<Error> writeWhole(const fs::path& file, std::string_view bytes) {
  const fs::path target = linkTarget(file);
  if (isReplaceable(target) ? replace(target, bytes) : writeInPlace(target, bytes)) return std::nullopt;
  return systemFailure(file);
}

std::optional<Error> makeFolders(const fs::path& folder) {
  std::error_code error;
  if (folder.empty() || fs::is_directory(folder, error)) return std::nullopt;
  if (auto failed = makeFolders(folder.parent_path())) return failed;
  // Another program may make it at the same time.
  if (::mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) return systemFailure(folder);
  syncNamesIn(folder.parent_path());
  return std::nullopt;
}

std::optional<Error> whyNotWritable(const fs::path& file) {
  const fs::path target = linkTarget(file);
  if (ownDescriptor(target)) return std::nullopt;
  // The dot makes a parent that is a file an error.
  const fs::path written = isReplaceable(target) ? target.parent_path() / "." : target;
  if (::access(written.c_str(), W_OK) != 0) return systemFailure(file);
  std::error_code ignored;
  if (!fs::is_directory(target, ignored)) return std::nullopt;
  errno = EISDIR;
  return systemFailure(file);
}

}  // namespace linewatch
