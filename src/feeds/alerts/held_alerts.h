#pragma once

#include <span>

#include "feeds/alerts/alerts_message.h"
#include "shared/date.h"

namespace linewatch {

/// Applies a received message to the alerts held so far. `held` is null before the first message. Gives
///  - `held` when the header of `message` is older; a header without a time is never older;
///  - `message` when it lists all alerts;
///  - otherwise `held` with the changes of `message`. Until a message with all alerts has come, the result is
///  a
///    difference too.
/// An error when there are too many alerts.
Outcome<SharedAlertsMessage> updatedAlerts(const SharedAlertsMessage& held,
                                           const SharedAlertsMessage& message);

/// Merges the messages of several payloads of one feed, in their order. Ids of different payloads stay
/// distinct. The result has the earliest time of the headers, and is a difference when one of the messages
/// is. `messages` must not be empty. An error when there are too many alerts.
Outcome<SharedAlertsMessage> mergedAlerts(std::span<const SharedAlertsMessage> messages);

/// False when the header's time is more than 5 minutes after the receipt, e.g. because it is in milliseconds
/// or the server's clock is wrong.
bool hasPlausibleTime(const AlertsMessage& message, Date received);

/// The same message, with a payload whose header has no time.
Outcome<SharedAlertsMessage> withoutTime(const AlertsMessage& message);

}  // namespace linewatch
