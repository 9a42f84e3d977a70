#pragma once

#include <string>

#include "app/command_line.h"
#include "shared/outcome.h"
#include "storage/stored_feeds.h"

namespace linewatch::app {

/// The feed with the locations of the options and their keys. Asks for a key where one is wanted, once for
/// both documents unless their options differ. A document without a URL gets no keys.
Outcome<StoredFeed> feedFrom(const FeedOptions& options, const std::string& name);

/// The feed with the keys of the options. Without any it asks for the feed's key anew. An error when the feed
/// has no use for a key.
Outcome<StoredFeed> withNewKeys(StoredFeed feed, const FeedOptions& options);

}  // namespace linewatch::app
