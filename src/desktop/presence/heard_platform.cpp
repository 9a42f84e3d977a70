#include "desktop/presence/heard_platform.h"

#include <utility>
#include <variant>

#include "platform/favorites.h"
#include "platform/main_loop.h"

namespace linewatch::desktop {

namespace {

void tell(const HeardPlatform::Listener& listener, const HeardAnswer& answer) {
  if (listener) listener(answer);
}

class HeardTicket final : public TransitLinesTicket {
 public:
  HeardTicket(std::shared_ptr<TransitLinesTicket> asked, std::size_t favorites,
              std::shared_ptr<HeardPlatform::Listener> listener)
      : asked_(std::move(asked)), favorites_(favorites), listener_(std::move(listener)) {}

  void submit(Handler handler) override {
    asked_->submit([favorites = favorites_, listener = listener_, handler = std::move(handler)](
                       const std::shared_ptr<const TransitLineItems>& items, std::optional<Error> error) {
      handler(items, error);
      tell(*listener, {.favorites = favorites, .lines = items, .error = std::move(error)});
    });
  }

 private:
  std::shared_ptr<TransitLinesTicket> asked_;
  std::size_t favorites_;
  std::shared_ptr<HeardPlatform::Listener> listener_;
};

/// Without a favourite line, or when the favourites cannot be read, nobody asks the service. Then this read
/// is the answer.
class HeardContainer final : public FavoritesContainer {
 public:
  HeardContainer(std::shared_ptr<FavoritesContainer> asked, std::shared_ptr<HeardPlatform::Listener> listener,
                 MainLoop& mainLoop)
      : asked_(std::move(asked)), listener_(std::move(listener)), mainLoop_(mainLoop) {}

  void readContents(std::function<void(const Outcome<Favorites>&)> operation) override {
    asked_->readContents([listener = listener_, &mainLoop = mainLoop_,
                          operation = std::move(operation)](const Outcome<Favorites>& favorites) {
      operation(favorites);
      if (favorites && !lookedUpLines(*favorites).empty()) return;
      HeardAnswer answer;
      if (favorites)
        answer.lines = std::make_shared<const TransitLineItems>();
      else
        answer.error = favorites.error();
      mainLoop.dispatchAsync([listener, answer = std::move(answer)] { tell(*listener, answer); });
    });
  }

 private:
  std::shared_ptr<FavoritesContainer> asked_;
  std::shared_ptr<HeardPlatform::Listener> listener_;
  MainLoop& mainLoop_;
};

}  // namespace

HeardPlatform::HeardPlatform(Platform& asked) : PlatformWrapper(asked) {}

std::shared_ptr<FavoritesContainer> HeardPlatform::makeFavoritesContainer(
    std::shared_ptr<RemoteFavoritesPersister> persister) {
  return std::make_shared<HeardContainer>(wrapped().makeFavoritesContainer(std::move(persister)), listener_,
                                          mainLoop());
}

std::shared_ptr<TransitLinesTicket> HeardPlatform::Service::ticketForTransitLines(
    std::vector<MapItemIdentifier> identifiers) {
  const std::size_t count = identifiers.size();
  return std::make_shared<HeardTicket>(
      platform_.wrapped().transitService().ticketForTransitLines(std::move(identifiers)), count,
      platform_.listener_);
}

std::vector<MapItemIdentifier> lookedUpLines(const Favorites& favorites) {
  std::vector<MapItemIdentifier> identifiers;
  for (const Favorite& favorite : favorites) {
    const auto* const line = std::get_if<FavoriteTransitLine>(&favorite);
    if (!line || !line->transitLine) continue;
    if (auto identifier = mapItemIdentifierForLine(*line->transitLine))
      identifiers.push_back(*std::move(identifier));
  }
  return identifiers;
}

}  // namespace linewatch::desktop
