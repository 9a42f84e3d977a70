#include "desktop/loop/folder_watch.h"

#include <QFileSystemWatcher>
#include <QString>
#include <QTimer>
#include <utility>

namespace linewatch::desktop {

namespace {

constexpr int kTogetherMilliseconds = 100;

}  // namespace

void watchFolder(QObject& owner, const std::filesystem::path& folder, std::function<void()> changed) {
  auto* const watcher = new QFileSystemWatcher(&owner);
  if (!watcher->addPath(QString::fromStdString(folder.string()))) return;
  auto* const pause = new QTimer(watcher);
  pause->setSingleShot(true);
  pause->setInterval(kTogetherMilliseconds);
  QObject::connect(pause, &QTimer::timeout, watcher, std::move(changed));
  QObject::connect(watcher, &QFileSystemWatcher::directoryChanged, pause, qOverload<>(&QTimer::start));
}

}  // namespace linewatch::desktop
