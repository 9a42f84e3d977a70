#pragma once

#include "app/report.h"
#include "app/session.h"
#include "app/terminal_text.h"
#include "feeds/catalogue/feed_adding.h"

namespace linewatch::app {

/// Adds or tries the feed. Shows the progress on a terminal; after Control-C the error has the code
/// `cancelled`.
Outcome<FeedFindings> addWithProgress(Session& session, FeedProposal proposal);

/// The end of a command that could not add a feed, or that the rider has cancelled.
Report refusedOrInterrupted(const RiderTexts& texts, const Error& error);

}  // namespace linewatch::app
