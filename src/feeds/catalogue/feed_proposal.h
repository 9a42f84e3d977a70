#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/catalogue/catalogue_hit.h"
#include "shared/error.h"
#include "shared/outcome.h"
#include "storage/stored_feeds.h"

namespace linewatch {

/// A feed that a rider wants to add.
struct FeedProposal {
  StoredFeed feed;
  /// The catalogue's copies of the timetable's locations, in their order, empty where it has none. They are
  /// tried, without keys, when the agency's own timetable cannot be read. May be shorter than the locations.
  std::vector<std::string> timetableCopies;
  /// The feed is saved already, and is only tried, e.g. with a new key.
  bool isSaved = false;

  bool operator==(const FeedProposal&) const = default;
};

/// Why a feed cannot have that name; absent when it can. A name is one line of 1 to 100 bytes without a
/// colon.
std::optional<Error> feedNameError(const std::string& name);
/// The error for a name that another feed has.
Error feedNameInUse(const std::string& name);
/// The name, or "NAME 2", "NAME 3" … when a feed has it. Makes a possible name of any text.
std::string freeFeedName(std::string_view wanted, std::span<const StoredFeed> known);

/// The feed with the catalogue's copies of its timetable, which need no key.
StoredFeed withCopies(const FeedProposal& proposal);

/// The feed of a hit, with a name made from its provider or place that none of `known` has. `key`: the key
/// that the rider typed; empty when none is needed. A feed of `known` with the same addresses and keys, or
/// with the copies of the timetable, is read again instead of added twice.
FeedProposal proposalOf(const CatalogueHit& hit, const std::string& key, std::span<const StoredFeed> known);

/// The feed at pasted addresses or chosen files. Files become absolute. An error that says what is wrong with
/// the name or an address, e.g. one without a scheme; it shows no key.
Outcome<FeedProposal> proposalOf(StoredFeed feed);

}  // namespace linewatch
