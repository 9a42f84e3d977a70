#include "ui/notification_center.h"

#include <utility>

namespace linewatch::ui {

void NotificationCenter::addObserver(const std::shared_ptr<Object>& observer, std::string_view name,
                                     std::function<void()> handler) {
  std::erase_if(observations_, [](const auto& observation) { return observation->observer.expired(); });
  observations_.push_back(std::make_shared<Observation>(
      Observation{observer.get(), observer, std::string(name), std::move(handler)}));
}

void NotificationCenter::removeObserver(const Object& observer) {
  std::erase_if(observations_, [&](const auto& observation) {
    if (observation->identity != &observer) return false;
    observation->ended = true;
    return true;
  });
}

void NotificationCenter::post(std::string_view name) {
  const auto current = observations_;
  for (const auto& observation : current) {
    if (observation->ended || observation->name != name) continue;
    // Keeps the observer alive during the call: the handler may drop the last other reference.
    if (const auto observer = observation->observer.lock()) observation->handler();
  }
}

}  // namespace linewatch::ui
