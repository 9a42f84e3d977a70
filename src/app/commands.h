#pragma once

#include <string>

#include "app/command_line.h"
#include "app/report.h"
#include "app/rider_texts.h"
#include "app/session.h"
#include "app/terminal_text.h"
#include "feeds/feed_state.h"
#include "simulation/scenario/scenario_run.h"

namespace linewatch::app {

/// The state of each feed that was read, the removed feeds of favourites, and the names of unknown lines, on
/// a line each.
std::string dataNote(Session& session, const TerminalStyle& style);
/// Says that the city is made up, and how to add another; empty if it is the user's.
std::string sampleCityNote(Session& session, const TerminalStyle& style);
/// Tells a user whose favourites are of removed feeds how to add a feed.
std::string noFeedLeft(const RiderTexts& texts);
/// The state's error in words, without the name of the feed; empty without an error.
std::string reasonOf(const FeedState& state, const RiderTexts& texts);

Report show(Session& session, const ShowCommand& command, const CommonOptions& options,
            const TerminalStyle& style);
Report status(Session& session, const StatusCommand& command, const CommonOptions& options);
Report favorites(Session& session, const FavoritesCommand& command, const TerminalStyle& style);
Report lines(Session& session, const LinesCommand& command, const TerminalStyle& style);
Report feed(Session& session, const FeedCommand& command, const TerminalStyle& style);
Report analytics(Session& session, const AnalyticsCommand& command, const TerminalStyle& style);
Report settings(Session& session, const SettingsCommand& command, const CommonOptions& options,
                const TerminalStyle& style);
Report notify(Session& session, const NotifyCommand& command, const TerminalStyle& style);
Report mute(Session& session, const MuteCommand& command);
Report open(Session& session, const OpenCommand& command);
Report complete(Session& session, const CompleteCommand& command);
/// Needs no session, because a scenario makes its own platform.
Report simulate(const SimulateCommand& command, const TerminalStyle& style);
/// Where the command ends its run.
simulation::RunEnd endOf(const SimulateCommand& command);
/// Whether the command draws a picture, which needs linewatch-screen.
bool drawsPicture(const SimulateCommand& command);

}  // namespace linewatch::app
