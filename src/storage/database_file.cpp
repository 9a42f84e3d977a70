#include "storage/database_file.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace linewatch {

namespace {

namespace fs = std::filesystem;

constexpr const char* kLogSuffix = "-wal";
/// SQLite's files beside a database: the rollback journal, the write-ahead log and the log's index.
constexpr std::array kCompanionSuffixes = {"-journal", kLogSuffix, "-shm"};
/// A new file has this suffix and six more characters until it is complete.
constexpr std::string_view kUnfinishedSuffix = ".new-";

constexpr mode_t kOwnerOnly = 0600;
constexpr mode_t kFolderOfOwner = 0700;
constexpr mode_t kPermissionBits = 0777;

std::error_code lastSystemError() { return {errno, std::generic_category()}; }

/// A file descriptor that is closed at the end of the scope. Negative when the file could not be opened.
class Descriptor {
 public:
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  ~Descriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return descriptor_; }

 private:
  int descriptor_;
};

/// Removes the permissions outside of `allowed` and adds none, so a read-only file stays read-only.
void restrictMode(const fs::path& path, mode_t allowed) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || status.st_uid != ::geteuid()) return;
  const mode_t mode = status.st_mode & kPermissionBits;
  if ((status.st_mode & S_ISVTX) != 0 || (mode & ~allowed) == 0) return;
  static_cast<void>(::chmod(path.c_str(), mode & allowed));
}

std::error_code makePrivateFolder(const fs::path& folder) {
  if (::mkdir(folder.c_str(), kFolderOfOwner) != 0) return lastSystemError();
  // A umask may have taken the owner's own rights.
  return ::chmod(folder.c_str(), kFolderOfOwner) == 0 ? std::error_code() : lastSystemError();
}

std::error_code makePrivateFolders(const fs::path& folder) {
  std::error_code error = makePrivateFolder(folder);
  if (error == std::errc::no_such_file_or_directory && folder.has_relative_path()) {
    error = makePrivateFolders(folder.parent_path());
    if (!error) error = makePrivateFolder(folder);
  }
  std::error_code ignored;
  return fs::is_directory(folder, ignored) ? std::error_code() : error;
}

std::error_code writeAndSync(int descriptor, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) return lastSystemError();
    if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return ::fsync(descriptor) == 0 ? std::error_code() : lastSystemError();
}

/// Without this a power cut may take back a new name.
void syncFolder(const fs::path& folder) {
  const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.get() >= 0) ::fsync(opened.get());
}

/// They may be new, or a killed program may have made them.
void syncFoldersAbove(const fs::path& folder) {
  for (fs::path above = folder; above.has_relative_path();) {
    above = above.parent_path();
    syncFolder(above);
  }
}

}  // namespace

std::optional<DatabaseFile::Identity> DatabaseFile::identity() const {
  struct stat status {};
  if (::stat(path_.c_str(), &status) != 0) return std::nullopt;
  return Identity{status.st_dev, status.st_ino};
}

bool DatabaseFile::isKnownAbsent() const {
  struct stat status {};
  return ::stat(path_.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

bool DatabaseFile::hasNoBytes() const {
  struct stat status {};
  return ::stat(path_.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size == 0;
}

std::string DatabaseFile::logName() const { return path_.filename().string() + kLogSuffix; }

bool DatabaseFile::hasLog() const { return ::access(beside(kLogSuffix).c_str(), F_OK) == 0; }

void DatabaseFile::touchLog() const {
  static_cast<void>(::utimensat(AT_FDCWD, beside(kLogSuffix).c_str(), nullptr, 0));
}

// ---- Modes ----

std::error_code DatabaseFile::makeFolder() const {
  const fs::path folder = path_.parent_path();
  const auto error = makePrivateFolders(folder);
  if (!error) restrictMode(folder, kFolderOfOwner);
  return error;
}

void DatabaseFile::restrictToOwner() const {
  restrictMode(path_, kOwnerOnly);
  for (const char* suffix : kCompanionSuffixes) restrictMode(beside(suffix), kOwnerOnly);
}

// ---- A new file ----

std::error_code DatabaseFile::create(std::span<const std::uint8_t> bytes) const {
  std::string name = path_.string() + std::string(kUnfinishedSuffix) + "XXXXXX";
  const Descriptor made(::mkostemp(name.data(), O_CLOEXEC));
  if (made.get() < 0) return lastSystemError();
  std::error_code error;
  if (::fchmod(made.get(), kOwnerOnly) != 0) error = lastSystemError();
  if (!error) error = writeAndSync(made.get(), bytes);
  // Before the file has its name: from then on no program makes it again.
  if (!error) syncFoldersAbove(path_.parent_path());
  if (!error) error = putInPlace(name);
  ::unlink(name.c_str());
  if (error) return error;
  syncFolder(path_.parent_path());
  removeUnfinished();
  return {};
}

// A hard link never replaces a file, as renaming would.
std::error_code DatabaseFile::putInPlace(const fs::path& made) const {
  if (::link(made.c_str(), path_.c_str()) == 0 || errno == EEXIST) return {};
  const std::error_code error = lastSystemError();
  // The unfinished file is gone when a faster program has removed it.
  if (!isKnownAbsent()) return {};
  const bool hasNoLinks = error == std::errc::operation_not_permitted ||
                          error == std::errc::operation_not_supported ||
                          error == std::errc::function_not_supported;
  if (!hasNoLinks) return error;
  return ::rename(made.c_str(), path_.c_str()) == 0 ? std::error_code() : lastSystemError();
}

// Removes the unfinished files of programs that were killed. An unfinished file of a running program is not
// needed any more either.
void DatabaseFile::removeUnfinished() const {
  const std::string prefix = path_.filename().string() + std::string(kUnfinishedSuffix);
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(path_.parent_path(), ignored)) {
    if (entry.path().filename().string().starts_with(prefix)) fs::remove(entry.path(), ignored);
  }
}

// ---- Damaged files ----

std::error_code DatabaseFile::setAside(const std::optional<Identity>& damaged) const {
  // Two programs that find the same damage must not set the new file aside as well.
  const Descriptor locked(::open(path_.c_str(), O_RDONLY | O_CLOEXEC));
  if (locked.get() >= 0) ::flock(locked.get(), LOCK_EX);
  if (identity() != damaged) return {};
  restrictToOwner();
  const fs::path aside = damagedName(countSetAside() + 1);
  // The journal and the log are moved first: SQLite would apply a journal left behind to the new file.
  for (const char* suffix : kCompanionSuffixes) {
    static_cast<void>(::rename(beside(suffix).c_str(), (aside.string() + suffix).c_str()));
  }
  return ::rename(path_.c_str(), aside.c_str()) == 0 ? std::error_code() : lastSystemError();
}

std::optional<fs::path> DatabaseFile::lastSetAside() const {
  const int count = countSetAside();
  return count == 0 ? std::nullopt : std::optional(damagedName(count));
}

fs::path DatabaseFile::beside(const char* suffix) const { return path_.string() + suffix; }

fs::path DatabaseFile::damagedName(int number) const {
  return path_.string() + (number == 1 ? ".damaged" : ".damaged-" + std::to_string(number));
}

int DatabaseFile::countSetAside() const {
  std::error_code ignored;
  int count = 0;
  while (fs::exists(damagedName(count + 1), ignored)) ++count;
  return count;
}

}  // namespace linewatch
