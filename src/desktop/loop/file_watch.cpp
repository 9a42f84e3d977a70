#include "desktop/loop/file_watch.h"

#include <QFileSystemWatcher>
#include <QStringList>
#include <QTimer>
#include <algorithm>
#include <optional>
#include <system_error>
#include <tuple>
#include <utility>

#include <sys/stat.h>

namespace linewatch::desktop {

namespace {

namespace fs = std::filesystem;

constexpr int kQuietMilliseconds = 100;
constexpr int kMostFollowedLinks = 40;

/// The identity of a file: it differs after the file is replaced or written.
using FileStamp = std::tuple<dev_t, ino_t, off_t, time_t, long, time_t, long>;

/// Absent without a file.
std::optional<FileStamp> stampOf(const fs::path& file) {
  struct stat state {};
  if (::stat(file.c_str(), &state) != 0) return std::nullopt;
  return FileStamp{state.st_dev,          state.st_ino,         state.st_size,        state.st_mtim.tv_sec,
                   state.st_mtim.tv_nsec, state.st_ctim.tv_sec, state.st_ctim.tv_nsec};
}

/// The folder of the file, or the nearest one above it that exists.
fs::path nearestFolder(const fs::path& file) {
  std::error_code ignored;
  fs::path folder = file.parent_path();
  while (folder.has_relative_path() && !fs::is_directory(folder, ignored)) folder = folder.parent_path();
  return folder;
}

/// Everything that may change when the file does: the file, its folder, and those of the links' targets.
QStringList watchedPaths(fs::path file) {
  QStringList paths;
  std::error_code error;
  for (int links = 0; links <= kMostFollowedLinks; ++links) {
    paths.append(QString::fromStdString(nearestFolder(file).string()));
    if (fs::exists(file, error)) paths.append(QString::fromStdString(file.string()));
    if (!fs::is_symlink(file, error)) break;
    file = file.parent_path() / fs::read_symlink(file, error);
  }
  paths.removeDuplicates();
  return paths;
}

class FileWatch final : public QObject {
 public:
  FileWatch(QObject& owner, fs::path file, std::function<void()> changed)
      : QObject(&owner), file_(std::move(file)), changed_(std::move(changed)), stamp_(stampOf(file_)) {
    pause_.setSingleShot(true);
    pause_.setInterval(kQuietMilliseconds);
    connect(&pause_, &QTimer::timeout, this, [this] { look(); });
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this] { noteChange(); });
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, [this] { noteChange(); });
    watch();
  }

 private:
  /// A folder or file that was made again is a new one, which has to be added.
  void watch() {
    QStringList before;
    // A folder may be made between the look for it and the watch on the one above.
    for (QStringList paths = watchedPaths(file_); paths != before; paths = watchedPaths(file_)) {
      watcher_.addPaths(paths);
      before = paths;
    }
    QStringList stale = watcher_.directories() + watcher_.files();
    stale.removeIf([&before](const QString& path) { return before.contains(path); });
    if (!stale.isEmpty()) watcher_.removePaths(stale);
  }
  void noteChange() {
    watch();
    pause_.start();
  }
  /// Folders change for other reasons too.
  void look() {
    watch();
    const auto now = stampOf(file_);
    if (std::exchange(stamp_, now) != now) changed_();
  }

  fs::path file_;
  std::function<void()> changed_;
  std::optional<FileStamp> stamp_;
  QFileSystemWatcher watcher_;
  QTimer pause_;
};

}  // namespace

void watchFile(QObject& owner, const fs::path& file, std::function<void()> changed) {
  new FileWatch(owner, file, std::move(changed));
}

}  // namespace linewatch::desktop
