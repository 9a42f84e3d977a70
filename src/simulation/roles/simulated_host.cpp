#include "simulation/roles/simulated_host.h"

#include <utility>

namespace linewatch::simulation {

std::string_view nameOf(WidgetDisplayMode mode) {
  return mode == WidgetDisplayMode::expanded ? "expanded" : "compact";
}

Size SimulatedExtensionContext::maximumSizeForDisplayMode(WidgetDisplayMode mode) const {
  const WorldHost& host = backstage_->world.host;
  return mode == WidgetDisplayMode::expanded ? host.expanded : host.compact;
}

void SimulatedExtensionContext::setLargestAvailableDisplayMode(WidgetDisplayMode mode) {
  backstage_->transcript->record("largestAvailableDisplayMode", {{"mode", nameOf(mode)}});
}

void SimulatedExtensionContext::openURL(const URL& url, std::function<void(bool success)> completion) {
  backstage_->transcript->record("openURL", {{"url", url.absoluteString}});
  if (!completion) return;
  backstage_->mainLoop.dispatchAsync(
      [backstage = backstage_, completion = std::move(completion)] { completion(backstage->world.opens); });
}

}  // namespace linewatch::simulation
