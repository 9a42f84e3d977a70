#pragma once

#include <optional>

#include "shared/date.h"

namespace linewatch::desktop {

// Values that the panel saves for its next start. A choice is absent until the user makes it. Needs an
// installed platform. Main thread.

/// Whether the user wants the widget expanded.
std::optional<bool> loadExpansion();
void saveExpansion(bool isExpanded);

/// When the saved list was last known to be up to date; absent without a saved list, or if it is an error.
std::optional<Date> loadListDate();
void saveListDate(std::optional<Date> date);

}  // namespace linewatch::desktop
