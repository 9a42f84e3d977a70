#pragma once

#include <QObject>
#include <functional>
#include <optional>

#include "app/refresh_loop.h"
#include "app/report.h"
#include "app/session.h"
#include "app/watched_output.h"
#include "settings/user_settings.h"
#include "shared/date.h"

namespace linewatch::app {

/// Starts a look at the news, prints what it finds, and calls `done`.
using WatchLook = std::function<void(WatchedOutput& output, std::function<void()> done)>;

/// Looks for news until the command must end: at the user's refresh interval, when `nextChange` says that the
/// news change by themselves, and at SIGUSR1. The report is empty after a signal or the end of the reader.
Report runWatch(Session& session, const WatchLook& look, std::function<std::optional<Date>()> nextChange);

/// Lets the loop follow the setting `refresh`, which the user or another program may change, while `owner`
/// lives.
void followRefresh(QObject& owner, UserSettings& settings, RefreshLoop& loop);

/// A report with status 2 for a write that failed with this error number; an empty one for 0.
Report reportOfWatch(int error);

}  // namespace linewatch::app
