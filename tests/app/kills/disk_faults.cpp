// Is preloaded into a program. Kills it at a chosen call that changes something below a folder, and keeps a
// copy of all that was synced there, which is what a power cut leaves at worst. A test sets the environment:
//
//   LINEWATCH_DISK      the folder, without a link in its path
//   LINEWATCH_KILL_AT   the call to be killed at, counted from 1; 0 for none
//   LINEWATCH_TORN      with a value, half of a killed write is written
//   LINEWATCH_CALLS     a file that gets a byte for each call
//   LINEWATCH_SYNCED    a folder that gets "file-INODE" with the synced bytes of a file, and "folder-INODE"
//   with the
//                       synced entries of a folder, a line "KIND INODE NAME" each; KIND is f or d

#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

template <class Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string setting(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

struct Settings {
  std::string disk = setting("LINEWATCH_DISK"), calls = setting("LINEWATCH_CALLS"),
              synced = setting("LINEWATCH_SYNCED");
  long killAt = std::atol(setting("LINEWATCH_KILL_AT").c_str());
  bool torn = !setting("LINEWATCH_TORN").empty();
};
const Settings& settings() {
  static const Settings all;
  return all;
}

bool isOnDisk(std::string_view path) {
  const std::string& disk = settings().disk;
  return !disk.empty() && path.starts_with(disk) && (path.size() == disk.size() || path[disk.size()] == '/');
}

std::string pathOf(int descriptor) {
  char path[4096];
  const ssize_t size = readlink(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), path, sizeof path);
  return size < 0 ? "" : std::string(path, static_cast<std::size_t>(size));
}

void die() {
  kill(getpid(), SIGKILL);
  pause();
}

/// Counts a call. True when the program is to die at it.
bool isLast() {
  static std::atomic<long> count{0};
  const int calls =
      next<int(const char*, int, ...)>("open")(settings().calls.c_str(), O_WRONLY | O_APPEND | O_CREAT, 0600);
  if (calls >= 0) {
    static_cast<void>(next<ssize_t(int, const void*, size_t)>("write")(calls, ".", 1));
    close(calls);
  }
  return ++count == settings().killAt;
}

void countChange(std::string_view path) {
  if (isOnDisk(path) && isLast()) die();
}

/// For a write: the number of bytes to write before the end, or `size` when the program goes on.
size_t writableSize(int descriptor, size_t size, bool& dies) {
  dies = isOnDisk(pathOf(descriptor)) && isLast();
  if (dies && !settings().torn) die();
  return dies ? size / 2 : size;
}

// ---- What is synced ----

std::string syncedName(const char* kind, ino_t inode) {
  return settings().synced + "/" + kind + std::to_string(inode);
}

/// Puts the whole file in place at once.
class SyncedCopy {
 public:
  explicit SyncedCopy(std::string name)
      : name_(std::move(name)), file_(std::fopen(temporary().c_str(), "we")) {}
  ~SyncedCopy() {
    if (!file_) return;
    std::fclose(file_);
    next<int(const char*, const char*)>("rename")(temporary().c_str(), name_.c_str());
  }
  SyncedCopy(const SyncedCopy&) = delete;
  SyncedCopy& operator=(const SyncedCopy&) = delete;

  void add(const void* bytes, size_t size) { std::fwrite(bytes, 1, size, file_); }

 private:
  std::string temporary() const { return name_ + "." + std::to_string(getpid()); }

  std::string name_;
  std::FILE* file_;
};

/// Reads through the program's own descriptor: closing another one would drop its locks on the file. A
/// descriptor that can only write has no locks.
void keepFile(int descriptor, const std::string& path, const struct stat& status) {
  SyncedCopy copy(syncedName("file-", status.st_ino));
  const bool canRead = (fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_WRONLY;
  const int own = canRead ? -1 : next<int(const char*, int, ...)>("open")(path.c_str(), O_RDONLY);
  if (!canRead) descriptor = own;
  char buffer[65536];
  off_t place = 0;
  for (ssize_t size; (size = pread(descriptor, buffer, sizeof buffer, place)) > 0; place += size) {
    copy.add(buffer, static_cast<std::size_t>(size));
  }
  if (own >= 0) close(own);
}

void keepFolder(const std::string& path, const struct stat& status) {
  DIR* folder = opendir(path.c_str());
  if (!folder) return;
  SyncedCopy copy(syncedName("folder-", status.st_ino));
  while (const dirent* entry = readdir(folder)) {
    if (std::string_view(entry->d_name) == "." || std::string_view(entry->d_name) == "..") continue;
    const std::string line = std::string(entry->d_type == DT_DIR ? "d " : "f ") +
                             std::to_string(entry->d_ino) + " " + entry->d_name + "\n";
    copy.add(line.data(), line.size());
  }
  closedir(folder);
}

void keepSynced(int descriptor) {
  const std::string path = pathOf(descriptor);
  struct stat status {};
  if (settings().synced.empty() || !isOnDisk(path) || fstat(descriptor, &status) != 0) return;
  S_ISDIR(status.st_mode) ? keepFolder(path, status) : keepFile(descriptor, path, status);
}

/// A power cut may bring back a removed file, so no new file may get its number.
void keepInode(const char* path) {
  struct stat status {};
  if (settings().synced.empty() || !isOnDisk(path) || stat(path, &status) != 0) return;
  static_cast<void>(
      next<int(const char*, const char*)>("link")(path, syncedName("removed-", status.st_ino).c_str()));
}

// ---- The calls ----

using Open = int(const char*, int, ...);

int openAs(const char* name, const char* path, int flags, mode_t mode) {
  const bool makes = (flags & O_CREAT) != 0 && isOnDisk(path) && access(path, F_OK) != 0;
  if (makes) countChange(path);
  return next<Open>(name)(path, flags, mode);
}

int makeTemporary(const char* name, char* pattern, int flags) {
  countChange(pattern);
  return next<int(char*, int)>(name)(pattern, flags);
}

template <class Offset>
ssize_t writeAt(const char* name, int descriptor, const void* bytes, size_t size, Offset offset) {
  bool dies = false;
  const size_t writable = writableSize(descriptor, size, dies);
  const ssize_t written =
      next<ssize_t(int, const void*, size_t, Offset)>(name)(descriptor, bytes, writable, offset);
  if (dies) die();
  return written;
}

template <class Offset>
int truncateTo(const char* name, int descriptor, Offset size) {
  countChange(pathOf(descriptor));
  return next<int(int, Offset)>(name)(descriptor, size);
}

int sync(const char* name, int descriptor) {
  countChange(pathOf(descriptor));
  const int result = next<int(int)>(name)(descriptor);
  if (result == 0) keepSynced(descriptor);
  return result;
}

int changeNames(const char* name, const char* from, const char* to) {
  countChange(to);
  return next<int(const char*, const char*)>(name)(from, to);
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return openAs("open", path, flags, mode);
}
int open64(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return openAs("open64", path, flags, mode);
}
int mkostemp(char* pattern, int flags) { return makeTemporary("mkostemp", pattern, flags); }
int mkostemp64(char* pattern, int flags) { return makeTemporary("mkostemp64", pattern, flags); }

ssize_t write(int descriptor, const void* bytes, size_t size) {
  bool dies = false;
  const size_t writable = writableSize(descriptor, size, dies);
  const ssize_t written = next<ssize_t(int, const void*, size_t)>("write")(descriptor, bytes, writable);
  if (dies) die();
  return written;
}
ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t offset) {
  return writeAt("pwrite", descriptor, bytes, size, offset);
}
ssize_t pwrite64(int descriptor, const void* bytes, size_t size, off64_t offset) {
  return writeAt("pwrite64", descriptor, bytes, size, offset);
}
int ftruncate(int descriptor, off_t size) noexcept { return truncateTo("ftruncate", descriptor, size); }
int ftruncate64(int descriptor, off64_t size) noexcept { return truncateTo("ftruncate64", descriptor, size); }
int fsync(int descriptor) { return sync("fsync", descriptor); }
int fdatasync(int descriptor) { return sync("fdatasync", descriptor); }
int rename(const char* from, const char* to) noexcept {
  keepInode(to);
  return changeNames("rename", from, to);
}
int link(const char* from, const char* to) noexcept { return changeNames("link", from, to); }
int unlink(const char* path) noexcept {
  countChange(path);
  keepInode(path);
  return next<int(const char*)>("unlink")(path);
}
int mkdir(const char* path, mode_t mode) noexcept {
  countChange(path);
  return next<int(const char*, mode_t)>("mkdir")(path, mode);
}

}  // extern "C"
