#include "desktop/window/network_watch.h"

#include <QNetworkInformation>
#include <memory>
#include <utility>

namespace linewatch::desktop {

void watchNetwork(QObject& owner, std::function<void()> returned) {
  using Reachability = QNetworkInformation::Reachability;
  if (!QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability)) return;
  const QNetworkInformation* const information = QNetworkInformation::instance();
  const auto isOnline = std::make_shared<bool>(information->reachability() == Reachability::Online);
  QObject::connect(information, &QNetworkInformation::reachabilityChanged, &owner,
                   [isOnline, returned = std::move(returned)](Reachability reachability) {
                     const bool wasOnline = std::exchange(*isOnline, reachability == Reachability::Online);
                     if (*isOnline && !wasOnline) returned();
                   });
}

}  // namespace linewatch::desktop
