#pragma once

#include <memory>

#include "ui/artwork_cache.h"

namespace linewatch {

/// A new cache for all artwork of a widget. To save memory, its managers keep no atlas.
std::shared_ptr<ArtworkDataSourceCache> memoryConstrainedImageViewCache();

}  // namespace linewatch
