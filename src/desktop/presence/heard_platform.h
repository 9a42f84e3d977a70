#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/favorites.h"
#include "platform/map_item_identifier.h"
#include "platform/platform_wrapper.h"
#include "platform/transit_line.h"
#include "platform/transit_service.h"
#include "shared/error.h"

namespace linewatch::desktop {

/// One answer to the question about the favourite lines.
struct HeardAnswer {
  /// The number of lines that were asked for.
  std::size_t favorites = 0;
  /// Null when the look-up failed; empty when no favourite is a line.
  std::shared_ptr<const TransitLineItems> lines;
  /// The error of the service, or of the reading of the favourites; absent after a success.
  std::optional<Error> error;
};

/// A platform that reports each answer about the favourite lines, whoever asked. Every role is that of the
/// wrapped platform. The answer goes to the one who asked first, and then to the listener.
class HeardPlatform final : public PlatformWrapper {
 public:
  /// Called on the main thread.
  using Listener = std::function<void(const HeardAnswer&)>;

  explicit HeardPlatform(Platform& asked);

  /// An empty function: nobody listens. Main thread.
  void setListener(Listener listener) { *listener_ = std::move(listener); }

  TransitService& transitService() override { return service_; }
  std::shared_ptr<FavoritesContainer> makeFavoritesContainer(
      std::shared_ptr<RemoteFavoritesPersister> persister) override;

 private:
  class Service final : public TransitService {
   public:
    explicit Service(HeardPlatform& platform) : platform_(platform) {}
    std::shared_ptr<TransitLinesTicket> ticketForTransitLines(
        std::vector<MapItemIdentifier> identifiers) override;

   private:
    HeardPlatform& platform_;
  };

  /// Shared with the look-ups, which may end after this object.
  std::shared_ptr<Listener> listener_ = std::make_shared<Listener>();
  Service service_{*this};
};

/// The lines among the favourites that can be looked up.
std::vector<MapItemIdentifier> lookedUpLines(const Favorites& favorites);

}  // namespace linewatch::desktop
