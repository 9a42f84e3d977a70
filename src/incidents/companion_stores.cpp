#include "incidents/companion_stores.h"

#include "platform/companion_application.h"
#include "platform/platform.h"

namespace linewatch {

std::shared_ptr<FavoritesContainer> defaultContainer() {
  Platform& world = platform();
  return world.once<FavoritesContainer>(
      [&world] { return world.makeFavoritesContainer(world.makeRemoteFavoritesPersister()); });
}

std::shared_ptr<PreferencesStore> _rova_groupUserDefaults() {
  return platform().makePreferencesStore(kCompanionAppGroupSuite);
}

}  // namespace linewatch
