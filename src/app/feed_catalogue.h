#pragma once

#include <string>

#include "app/command_line.h"
#include "app/report.h"
#include "app/session.h"
#include "app/terminal_text.h"
#include "feeds/catalogue/kept_catalogue.h"
#include "shared/outcome.h"

namespace linewatch::app {

/// Reads the catalogue, and shows on a terminal how far its download is.
Outcome<KeptCatalogue::Reading> readCatalogueWithProgress(Session& session);

/// A report that says what the catalogue has instead of hits.
Report noHits(Session& session, const std::string& query, const CatalogueMatches& matches, int status);

/// `feed find`.
Report findFeeds(Session& session, const FeedCommand& command, const TerminalStyle& style);

/// `feed add`, by addresses or by a search.
Report addFeed(Session& session, const FeedCommand& command, const TerminalStyle& style);

}  // namespace linewatch::app
