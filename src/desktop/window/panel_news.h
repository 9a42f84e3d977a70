#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "desktop/window/window_texts.h"
#include "feeds/feed_state.h"
#include "feeds/transit_feeds.h"
#include "shared/date.h"
#include "shared/error.h"

namespace linewatch::desktop {

/// What the last fetch said of the feeds.
struct FeedNews {
  std::vector<FeedState> states;
  std::vector<UnknownLine> unknownLines;
  /// Why the list could not be loaded; absent when it could.
  std::optional<Error> error;
};

/// What the panel's header says when the list is not all there or not up to date.
struct PanelNews {
  /// One or two sentences; empty when all is well.
  QString text;
  /// A sentence for each feed, with the reason in brackets.
  QString details;
  /// Whether the words will change as time passes.
  bool hasAge = false;
};

PanelNews panelNews(const FeedNews& news, const WindowTexts& texts, Date now);

/// "12 minutes ago". A date in the future counts as now.
QString agoInWords(Date date, const WindowTexts& texts, Date now);

}  // namespace linewatch::desktop
