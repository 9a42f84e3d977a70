#include "desktop/loop/folder_watch.h"

#include <QFileSystemWatcher>
#include <QString>
#include <QTimer>
#include <system_error>
#include <utility>

namespace linewatch::desktop {

namespace {

constexpr int kTogetherMilliseconds = 100;

}  // namespace

void watchFolder(QObject& owner, const std::filesystem::path& folder, const std::vector<std::string>& files,
                 std::function<void()> changed) {
  auto* const watcher = new QFileSystemWatcher(&owner);
  if (!watcher->addPath(QString::fromStdString(folder.string()))) return;
  auto* const pause = new QTimer(watcher);
  pause->setSingleShot(true);
  pause->setInterval(kTogetherMilliseconds);
  QObject::connect(pause, &QTimer::timeout, watcher, std::move(changed));
  QObject::connect(watcher, &QFileSystemWatcher::directoryChanged, pause, qOverload<>(&QTimer::start));
  QObject::connect(watcher, &QFileSystemWatcher::fileChanged, pause, qOverload<>(&QTimer::start));
  // A file that was deleted and made again is a new file, which has to be added.
  const auto watchFiles = [watcher, folder, files] {
    for (const std::string& name : files) {
      const std::filesystem::path file = folder / name;
      std::error_code ignored;
      if (std::filesystem::exists(file, ignored)) watcher->addPath(QString::fromStdString(file.string()));
    }
  };
  QObject::connect(watcher, &QFileSystemWatcher::directoryChanged, watcher, watchFiles);
  watchFiles();
}

}  // namespace linewatch::desktop
