#pragma once

#include "platform/artwork.h"

namespace linewatch {

/// Compares the fields of two artwork descriptions that identify an artwork. Each may be null; two null
/// descriptions are equal. Equal descriptions have the same `hash(const TransitArtworkDataSource&)`.
bool TransitArtworkDataSourceIsEqual(const TransitArtworkDataSource* a, const TransitArtworkDataSource* b);

}  // namespace linewatch
