#include "desktop/window/panel_network.h"

#include <QTimer>
#include <utility>

#include "platform/log.h"
#include "shared/failure.h"
#include "shared/module.h"

namespace linewatch::desktop {

namespace {

/// Looking for the network service loads libraries. It waits until the window is on screen.
constexpr int kDelayMilliseconds = 2000;

using WatchMetering = void(QObject& owner, const std::function<void(bool isMetered)>& changed);

void startWatching(QObject& owner, const std::function<void(bool isMetered)>& changed) {
  const Outcome<void*> entry = moduleEntry("network", "linewatch_watchMetering");
  if (!entry) return logDebug("%@", {sentenceOf(entry.error())});
  reinterpret_cast<WatchMetering*> (*entry)(owner, changed);
}

}  // namespace

void watchMetering(QObject& owner, std::function<void(bool isMetered)> changed) {
  QTimer::singleShot(kDelayMilliseconds, &owner,
                     [&owner, changed = std::move(changed)] { startWatching(owner, changed); });
}

}  // namespace linewatch::desktop
