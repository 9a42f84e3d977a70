#pragma once

#include <string>

#include "feeds/alerts/alerts_message.h"

namespace linewatch {

/// What holds of a feed's alerts once a payload came in: `held` itself when the payload is older, what the
/// payload says when it says everything, and else `held` with the payload's changes made. Null for `held`
/// when nothing came before. An unreadable payload is an error, and what was held goes on to hold.
Outcome<SharedAlertsMessage> updatedAlerts(const SharedAlertsMessage& held, std::string payload);

}  // namespace linewatch
