#pragma once

#include "platform/artwork.h"

namespace linewatch {

/// Whether two artwork descriptions show the same thing, field by field; each may be null, and two null ones
/// are equal. Only the fields that identify an artwork take part: `hash(const TransitArtworkDataSource&)`
/// agrees with it.
bool TransitArtworkDataSourceIsEqual(const TransitArtworkDataSource* a, const TransitArtworkDataSource* b);

}  // namespace linewatch
