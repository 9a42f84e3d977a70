#pragma once

#include <string>

#include "app/command_line.h"
#include "app/rider_texts.h"
#include "shared/outcome.h"
#include "storage/stored_feeds.h"

namespace linewatch::app {

/// Makes a feed of the options. Asks for keys: once for both documents, or for each if their options differ.
/// A document without a URL gets no keys.
Outcome<StoredFeed> feedFrom(const RiderTexts& texts, const FeedOptions& options, const std::string& name);

/// The feed with the keys of the options; asks for those that it still needs.
Outcome<StoredFeed> withGivenKeys(const RiderTexts& texts, StoredFeed feed, const FeedOptions& options);

/// The feed with the keys of the options. Without options it asks for the feed's key again. An error if the
/// feed does not use keys.
Outcome<StoredFeed> withNewKeys(const RiderTexts& texts, StoredFeed feed, const FeedOptions& options);

}  // namespace linewatch::app
