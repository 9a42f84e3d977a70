#pragma once

#include <span>
#include <vector>

#include "notices/line_news.h"
#include "notices/notice_rules.h"
#include "status/transit_status.h"

namespace linewatch::desktop {

/// What the status says of the lines with a subscription. Lines that the status does not name are left out.
std::vector<notices::LineNews> newsOf(std::span<const notices::Subscription> subscriptions,
                                      const TransitStatus& status);

}  // namespace linewatch::desktop
