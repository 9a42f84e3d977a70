#pragma once

#include <memory>

#include "platform/favorites.h"
#include "platform/preferences_store.h"

namespace linewatch {

/// The companion application's favourites. The container is made on the first call and is the same for every
/// later call. Any thread.
std::shared_ptr<FavoritesContainer> defaultContainer();

/// A new store object on the preferences that the companion application shares with the widget.
std::shared_ptr<PreferencesStore> _rova_groupUserDefaults();

}  // namespace linewatch
