#pragma once

#include <optional>

#include "ui/text_style.h"

namespace linewatch::desktop {

// The user's choices in the panel, for its next start; absent before the first choice. Needs an installed
// platform. Main thread.

std::optional<ui::TextSizeCategory> keptTextSize();
void keepTextSize(ui::TextSizeCategory category);

/// Whether the widget is to be expanded as soon as it can be.
std::optional<bool> keptExpansion();
void keepExpansion(bool isExpanded);

}  // namespace linewatch::desktop
