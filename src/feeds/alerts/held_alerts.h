#pragma once

#include <span>

#include "feeds/alerts/alerts_message.h"
#include "shared/date.h"

namespace linewatch {

/// The alerts that hold after `message` came in:
///  - `held` when the header of `message` is older than that of `held`. A header without a time is never
///    older;
///  - else `message` when it lists all alerts;
///  - else `held` with the changes of `message`. This is a difference itself as long as no message has listed
///    all alerts.
/// `held` is null before the first message. An error when there are too many alerts to hold.
Outcome<SharedAlertsMessage> updatedAlerts(const SharedAlertsMessage& held,
                                           const SharedAlertsMessage& message);

/// The alerts of several payloads of one feed, in that order, as one message. Ids of different payloads never
/// collide. The time is the earliest that a header states, and one difference makes the whole a difference.
/// `messages` is not empty. An error when there are too many alerts to hold.
Outcome<SharedAlertsMessage> mergedAlerts(std::span<const SharedAlertsMessage> messages);

/// True unless the header's time lies more than 5 minutes after the receipt: then the server's clock is
/// wrong, or the time is in milliseconds.
bool hasPlausibleTime(const AlertsMessage& message, Date received);

/// The same alerts without a time in the header, also in the payload.
Outcome<SharedAlertsMessage> withoutTime(const AlertsMessage& message);

}  // namespace linewatch
