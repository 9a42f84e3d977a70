#pragma once

#include "shared/value.h"

namespace linewatch {
class RVTransitIncidentsViewController;
}

namespace linewatch::simulation {

/// The list of the controller, and every row as it is laid out, including rows that are scrolled out of
/// sight.
///
///     visible, expanded
///     rowHeight, artworkColumnWidth     points
///     maxNumberOfRows                   absent without a limit
///     list                              the dictionary form of the list, or absent
///     rows                              [ROW…]
///     ROW     cell                      "item", "summary" or "plain"
///             separator, highlights
///             item                      the dictionary form of the row's item
///             views                     {NAME: [x, y, width, height]…}, points from the row's top left
///
/// Loads the controller's view. The view is unchanged afterwards.
Dictionary snapshotOf(RVTransitIncidentsViewController& controller);

}  // namespace linewatch::simulation
