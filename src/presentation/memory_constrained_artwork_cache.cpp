#include "presentation/memory_constrained_artwork_cache.h"

#include <utility>

#include "platform/platform.h"

namespace linewatch {

std::shared_ptr<ArtworkDataSourceCache> memoryConstrainedImageViewCache() {
  std::shared_ptr<IconManager> iconManager = platform().makeIconManager();
  std::shared_ptr<ShieldManager> shieldManager = platform().makeShieldManager();
  return std::make_shared<ArtworkDataSourceCache>(
      std::make_shared<TransitArtworkManager>(std::move(shieldManager), std::move(iconManager)));
}

}  // namespace linewatch
