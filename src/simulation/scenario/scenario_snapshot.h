#pragma once

#include "shared/value.h"

namespace linewatch {
class RVTransitIncidentsViewController;
}

namespace linewatch::simulation {

/// What the controller shows: its list, and every row as it is laid out, those out of sight too.
///
///     visible, expanded
///     rowHeight, artworkColumnWidth     points
///     maxNumberOfRows                   none for no limit
///     list                              the list's form, or none
///     rows                              [ROW…]
///     ROW     cell                      "item", "summary" or "plain"
///             separator, highlights
///             item                      its form
///             views                     {NAME: [x, y, width, height]…}, points from the row's top left
///
/// The view of the controller is loaded. It looks afterwards as it did before.
Dictionary snapshotOf(RVTransitIncidentsViewController& controller);

}  // namespace linewatch::simulation
