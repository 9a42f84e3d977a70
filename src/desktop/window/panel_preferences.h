#pragma once

#include <optional>

#include "shared/date.h"

namespace linewatch::desktop {

// Values that the panel saves for its next start. A choice is absent until the user makes it. Needs an
// installed platform. Main thread.

/// Whether the user wants the widget expanded.
std::optional<bool> loadExpansion();
void saveExpansion(bool isExpanded);

/// The panel's place on the screen and its width, each as the user has left it.
struct SavedPlace {
  /// Points on the desktop.
  struct Corner {
    int x = 0, y = 0;
    bool operator==(const Corner&) const = default;
  };
  /// The window's upper left corner; absent where programs do not know it.
  std::optional<Corner> corner = std::nullopt;
  /// The card's width at the default text size, in points.
  std::optional<double> width = std::nullopt;

  bool operator==(const SavedPlace&) const = default;
};
SavedPlace loadPlace();
/// Writes only what has changed.
void savePlace(const SavedPlace& place);

/// When the saved list was last known to be up to date; absent without a saved list, or if it is an error.
std::optional<Date> loadListDate();
void saveListDate(std::optional<Date> date);

}  // namespace linewatch::desktop
