#pragma once

#include <string>

#include "app/session.h"
#include "app/terminal_text.h"
#include "incidents/result.h"
#include "localization/user_locale.h"

namespace linewatch::app {

/// The incidents of the next 7 days, the earliest first: each with the shields of its lines, its texts and
/// its dates in the user's language. One sentence when there are none.
std::string upcomingText(Session& session, const RVResult& result, const UserLocale& locale,
                         const TerminalStyle& style);

}  // namespace linewatch::app
