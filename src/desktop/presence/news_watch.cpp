#include "desktop/presence/news_watch.h"

#include <utility>

#include "platform/favorites.h"
#include "platform/main_loop.h"
#include "platform/platform.h"

namespace linewatch::desktop {

NewsWatch::NewsWatch(Platform& asked, Describe describe, PanelUpdates::Settings settings)
    : mainLoop_(asked.mainLoop()),
      heard_(std::make_shared<HeardPlatform>(asked)),
      describe_(std::move(describe)),
      refresh_(settings.refresh),
      updates_(
          asked.mainLoop(), asked.randomSource(), [this] { ask(); }, std::move(settings)) {
  heard_->setListener([this](const HeardAnswer& answer) { didHear(answer); });
}

NewsWatch::~NewsWatch() { heard_->setListener(nullptr); }

void NewsWatch::setPanelShown(bool isShown) {
  if (isPanelShown_ == isShown) return;
  isPanelShown_ = isShown;
  updates_.setVisible(!isShown);
  if (isShown) return;
  const Date now = mainLoop_.now();
  const bool isRecent = answered_ && *answered_ <= now && now - *answered_ < refresh_;
  // A recent answer serves until the next question is due.
  if (isRecent)
    updates_.fetchDidEnd(hasFailed_);
  else
    ask();
}

void NewsWatch::refresh() {
  if (isPanelShown_ == false) updates_.userDidAsk();
}

void NewsWatch::favoritesDidChange() { updates_.favoritesDidChange(); }
void NewsWatch::connectionDidReturn() { updates_.connectionDidReturn(); }
void NewsWatch::checkClock() { updates_.checkClock(); }
void NewsWatch::setMetered(bool isMetered) { updates_.setMetered(isMetered); }

void NewsWatch::setRefresh(Seconds refresh) {
  refresh_ = refresh;
  updates_.setRefresh(refresh);
}

/// The answer comes to `didHear`, as every answer does.
void NewsWatch::ask() {
  updates_.fetchDidBegin();
  if (!favorites_) favorites_ = heard_->makeFavoritesContainer(heard_->makeRemoteFavoritesPersister());
  favorites_->readContents([heard = heard_](const Outcome<Favorites>& favorites) {
    if (!favorites) return;
    auto lines = lookedUpLines(*favorites);
    if (lines.empty()) return;
    heard->transitService().ticketForTransitLines(std::move(lines))->submit([](const auto&, const auto&) {});
  });
}

void NewsWatch::didHear(const HeardAnswer& answer) {
  answered_ = mainLoop_.now();
  hasFailed_ = answer.error.has_value();
  describe_(answer, [this, isAlive = std::weak_ptr(listeners_)](const TransitNews& news) {
    if (!isAlive.expired()) setStatus(news);
  });
  updates_.fetchDidEnd(hasFailed_);
}

void NewsWatch::setStatus(const TransitNews& news) {
  status_ = std::make_shared<const TransitStatus>(transitStatus(news, mainLoop_.now()));
  // A listener may add or remove listeners, and a removed one must not be called any more.
  const auto status = status_;
  for (const Listeners listeners = *listeners_; const auto& listener : listeners) {
    if (const Listener call = *listener) call(*status);
  }
}

std::shared_ptr<void> NewsWatch::listen(Listener listener) {
  auto added = std::make_shared<Listener>(std::move(listener));
  listeners_->push_back(added);
  return {added.get(), [listeners = std::weak_ptr(listeners_), added](void*) {
            *added = nullptr;
            if (const auto all = listeners.lock()) all->remove(added);
          }};
}

}  // namespace linewatch::desktop
