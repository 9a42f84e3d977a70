#include "machine/content_folder.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "shared/failure.h"

namespace linewatch {

namespace {

constexpr std::string_view kFolderPrefix = "linewatch-companion-";
constexpr int kMostAttempts = 10;

/// Opens and locks a folder of this user. Negative if another process holds the lock, or if the folder is
/// gone or belongs to another user.
int lockFolder(const std::filesystem::path& folder) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor < 0) return descriptor;
  struct stat status {};
  const bool isLocked = flock(descriptor, LOCK_EX | LOCK_NB) == 0 && fstat(descriptor, &status) == 0 &&
                        status.st_nlink > 0 && status.st_uid == geteuid();
  if (isLocked) return descriptor;
  close(descriptor);
  return -1;
}

void deleteLocked(const std::filesystem::path& folder, int descriptor) {
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  close(descriptor);
}

}  // namespace

Outcome<ContentFolder> ContentFolder::make(const std::filesystem::path& parent) {
  int systemError = 0;
  // `removeAbandoned` in another process may delete the new folder before it is locked here: then another
  // folder is made.
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    std::string name = parent / std::string(kFolderPrefix).append("XXXXXX");
    const int descriptor = mkdtemp(name.data()) == nullptr ? -1 : lockFolder(name);
    if (descriptor >= 0) return ContentFolder(name, descriptor);
    systemError = errno;
    rmdir(name.c_str());
  }
  const std::error_code error(systemError, std::generic_category());
  return failure(failureCodeOf(error), "", parent.string(), error.message());
}

void ContentFolder::removeAbandoned(const std::filesystem::path& parent) {
  std::error_code error;
  for (std::filesystem::directory_iterator entry(parent, error), end; !error && entry != end;
       entry.increment(error)) {
    if (!entry->path().filename().string().starts_with(kFolderPrefix)) continue;
    if (const int descriptor = lockFolder(entry->path()); descriptor >= 0)
      deleteLocked(entry->path(), descriptor);
  }
}

ContentFolder::ContentFolder(ContentFolder&& other) noexcept
    : path_(std::move(other.path_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

ContentFolder::~ContentFolder() {
  if (descriptor_ >= 0) deleteLocked(path_, descriptor_);
}

}  // namespace linewatch
