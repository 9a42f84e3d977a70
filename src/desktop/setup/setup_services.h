#pragma once

#include <QUrl>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "desktop/window/favorites_pane.h"
#include "feeds/catalogue/feed_adding.h"
#include "feeds/catalogue/feed_proposal.h"
#include "feeds/catalogue/kept_catalogue.h"
#include "feeds/feed_state.h"
#include "shared/error.h"
#include "shared/outcome.h"
#include "storage/stored_feeds.h"

namespace linewatch::desktop {

/// Functions of the program with which the set-up adds, changes and removes feeds. Called on the main thread;
/// none blocks it.
struct SetupServices {
  using CatalogueRead = std::function<void(const Outcome<KeptCatalogue::Reading>&)>;
  using StatesRead = std::function<void(const std::vector<FeedState>&)>;

  /// The user's language, e.g. "de", and the region in two capital letters; empty when not known.
  std::string language, region;
  /// Reads the catalogue, and fetches it if needed. Calls the argument once, later, on the main thread.
  std::function<void(CatalogueRead)> readCatalogue;
  /// The user's own feeds.
  std::function<Outcome<std::vector<StoredFeed>>()> feeds;
  /// Starts an adding. The observer is called on any thread.
  std::function<std::shared_ptr<FeedAdding>(FeedProposal, FeedAdding::Observer)> startAdding;
  /// Waits on another thread for the end of a cancelled adding.
  std::function<void(std::shared_ptr<FeedAdding>)> discard;

  /// The states of the last look-up.
  std::function<std::vector<FeedState>()> states;
  /// Asks the servers again. Calls the argument once, later, on the main thread.
  std::function<void(StatesRead)> check;
  /// Replaces the feed of that name, e.g. with another key.
  std::function<std::optional<Error>(const StoredFeed&)> changeFeed;
  std::function<std::optional<Error>(const std::string& name)> removeFeed;
  /// The time of the program's clock.
  std::function<Date()> now;

  /// Opens a page in the browser; false on failure.
  std::function<bool(const QUrl&)> openLink;
  /// Called after feeds have been added, changed or removed.
  std::function<void()> feedsDidChange;
  FavoritesServices favorites;
};

}  // namespace linewatch::desktop
