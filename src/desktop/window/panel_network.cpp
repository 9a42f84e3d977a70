#include "desktop/window/panel_network.h"

#include <QNetworkInformation>
#include <QTimer>
#include <utility>

namespace linewatch::desktop {

namespace {

/// Finding the service loads libraries, so it waits until the window is on screen.
constexpr int kDelayMilliseconds = 2000;

void startWatching(QObject& owner, const std::function<void(bool)>& changed) {
  if (!QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Metered)) return;
  auto* const information = QNetworkInformation::instance();
  QObject::connect(information, &QNetworkInformation::isMeteredChanged, &owner, changed);
  if (information->isMetered()) changed(true);
}

}  // namespace

void watchMetering(QObject& owner, std::function<void(bool)> changed) {
  QTimer::singleShot(kDelayMilliseconds, &owner,
                     [&owner, changed = std::move(changed)] { startWatching(owner, changed); });
}

}  // namespace linewatch::desktop
