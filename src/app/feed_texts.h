#pragma once

#include <string>

#include "app/rider_texts.h"
#include "app/terminal_text.h"
#include "feeds/catalogue/feed_findings.h"
#include "feeds/feed_state.h"
#include "shared/date.h"

namespace linewatch::app {

/// A feed's state in one line.
std::string stateInWords(const RiderTexts& texts, const FeedState& state, Date now);

/// Two paragraphs: the result, such as "Added metro", with the numbers of lines and alerts; and the state.
std::string findingsText(const RiderTexts& texts, const std::string& done, const FeedFindings& findings,
                         Date now, const TerminalStyle& style);

}  // namespace linewatch::app
