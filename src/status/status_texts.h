#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "localization/icu_localization.h"
#include "status/transit_status.h"

namespace linewatch {

/// The status in a few words: "Good Service", "2 lines with advisories", "No news of 3 lines". "Good Service"
/// says that every favourite line is known and has no incident. The made-up city is marked as one.
std::string statusSummary(const TransitStatus& status, IcuLocalization& texts);

/// "A made-up city: " and the text, if the status is that of the made-up city; else the text. Nobody may take
/// a made-up line for a real one.
std::string markedIfSample(const TransitStatus& status, std::string text, IcuLocalization& texts);

/// What a tooltip says under the summary, a text for each line of it: "U6: Delays", the unknown lines by
/// name, the reason of a failure, and the age of the alerts once they are more than a few minutes old. A
/// line's name and the texts of incidents come from feeds, so they may look like markup. At most `limit`
/// lines with incidents are listed.
std::vector<std::string> statusDetails(const TransitStatus& status, Date now, IcuLocalization& texts,
                                       std::size_t limit = 10);

/// How long ago something was, e.g. "5 minutes ago".
std::string timeAgo(Seconds age, IcuLocalization& texts);

}  // namespace linewatch
