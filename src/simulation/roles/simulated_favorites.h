#pragma once

#include <memory>

#include "platform/favorites.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// Reads the current favourites of the world, unless the world says that they cannot be read.
class SimulatedFavoritesPersister final : public RemoteFavoritesPersister {
 public:
  explicit SimulatedFavoritesPersister(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  Outcome<Favorites> readFavorites() override {
    if (const auto& error = backstage_->world.favoritesError) return *error;
    return backstage_->records()->favorites();
  }

 private:
  SharedBackstage backstage_;
};

/// Reads through a persister; without one there are no favourites. Runs the operations in order, off the
/// simulated main thread.
class SimulatedFavoritesContainer final : public FavoritesContainer {
 public:
  SimulatedFavoritesContainer(SharedBackstage backstage, std::shared_ptr<RemoteFavoritesPersister> persister)
      : backstage_(std::move(backstage)), persister_(std::move(persister)) {}

  void readContents(std::function<void(const Outcome<Favorites>&)> operation) override {
    backstage_->mainLoop.runElsewhere([persister = persister_, operation = std::move(operation)] {
      operation(persister ? persister->readFavorites() : Favorites{});
    });
  }

 private:
  SharedBackstage backstage_;
  std::shared_ptr<RemoteFavoritesPersister> persister_;
};

}  // namespace linewatch::simulation
