#pragma once

#include <optional>

#include "shared/date.h"
#include "ui/text_style.h"

namespace linewatch::desktop {

// What the panel keeps for its next start; a choice of the user is absent before the first one. Needs an
// installed platform. Main thread.

std::optional<ui::TextSizeCategory> keptTextSize();
void keepTextSize(ui::TextSizeCategory category);

/// Whether the widget is to be expanded as soon as it can be.
std::optional<bool> keptExpansion();
void keepExpansion(bool isExpanded);

/// When the saved list was last known to be current; absent when none was saved, or only an error.
std::optional<Date> keptListDate();
void keepListDate(std::optional<Date> date);

}  // namespace linewatch::desktop
