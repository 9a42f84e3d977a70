#include <QNetworkInformation>
#include <functional>

namespace linewatch::desktop {

/// Follows the machine's network service, if there is one that Qt knows.
extern "C" __attribute__((visibility("default"))) void linewatch_watchMetering(
    QObject& owner, const std::function<void(bool isMetered)>& changed) {
  if (!QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Metered)) return;
  auto* const information = QNetworkInformation::instance();
  QObject::connect(information, &QNetworkInformation::isMeteredChanged, &owner, changed);
  if (information->isMetered()) changed(true);
}

}  // namespace linewatch::desktop
