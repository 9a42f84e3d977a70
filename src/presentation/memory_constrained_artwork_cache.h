#pragma once

#include <memory>

#include "ui/artwork_cache.h"

namespace linewatch {

/// A new cache for all artwork of one widget. A widget has little memory: no atlas of what was drawn is kept.
std::shared_ptr<ArtworkDataSourceCache> memoryConstrainedImageViewCache();

}  // namespace linewatch
