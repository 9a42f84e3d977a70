#pragma once

#include <memory>
#include <utility>

#include "feeds/background_queue.h"
#include "platform/favorites.h"

namespace linewatch {

/// Reads through a persister on a background queue and runs the operations there.
class BackgroundFavoritesContainer final : public FavoritesContainer {
 public:
  /// Without a persister there are no favourites.
  BackgroundFavoritesContainer(std::shared_ptr<BackgroundQueue> queue,
                               std::shared_ptr<RemoteFavoritesPersister> persister)
      : queue_(std::move(queue)), persister_(std::move(persister)) {}

  void readContents(std::function<void(const Outcome<Favorites>&)> operation) override {
    queue_->post([persister = persister_, operation = std::move(operation)] {
      operation(persister ? persister->readFavorites() : Favorites{});
    });
  }

 private:
  std::shared_ptr<BackgroundQueue> queue_;
  std::shared_ptr<RemoteFavoritesPersister> persister_;
};

}  // namespace linewatch
