#pragma once

#include <string>

#include "app/session.h"
#include "app/terminal_text.h"
#include "incidents/result.h"

namespace linewatch::app {

/// The incidents that begin within 7 days, in order of their start: the shields of the lines, the texts, and
/// the dates in the user's language. One sentence if there are none.
std::string upcomingText(Session& session, const RVResult& result, const TerminalStyle& style);

}  // namespace linewatch::app
