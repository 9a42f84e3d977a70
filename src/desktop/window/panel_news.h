#pragma once

#include <QString>
#include <optional>
#include <string>
#include <vector>

#include "desktop/window/window_texts.h"
#include "feeds/feed_state.h"
#include "feeds/transit_feeds.h"
#include "shared/date.h"
#include "shared/error.h"

namespace linewatch::desktop {

/// The state of the feeds after the last fetch.
struct FeedNews {
  std::vector<FeedState> states;
  std::vector<UnknownLine> unknownLines;
  /// The feeds of favourites that the user has removed. See `removedFeedsOf`.
  std::vector<std::string> removedFeeds = {};
  /// Why the list could not be loaded; absent after a success.
  std::optional<Error> error = {};
};

/// The text in the panel's header when the list is incomplete or not up to date.
struct PanelNews {
  /// A few sentences; empty when the list is complete and up to date.
  QString text;
  /// For the tooltip: a sentence for each feed, with the reason in brackets.
  QString details;
  /// Whether the text contains an age, which changes as time passes.
  bool hasAge = false;
  /// Whether only a feed that is added again helps, and another update does not.
  bool needsCity = false;
};

PanelNews panelNews(const FeedNews& news, const WindowTexts& texts, Date now);

/// A feed's state in a few sentences, with the reason for a failure.
QString feedStateInWords(const FeedState& state, const WindowTexts& texts, Date now);

/// "12 minutes ago". A date in the future counts as now.
QString agoInWords(Date date, const WindowTexts& texts, Date now);

}  // namespace linewatch::desktop
