#include "ui/artwork_image_source.h"

#include <functional>

#include "platform/platform.h"
#include "ui/artwork_cache.h"
#include "ui/image.h"
#include "ui/interface_settings.h"
#include "ui/text_style.h"

namespace linewatch {

SizedTransitArtwork::SizedTransitArtwork(SharedArtwork artworkDataSource, std::int64_t shieldSize,
                                         std::shared_ptr<ArtworkDataSourceCache> artworkCache)
    : artworkDataSource_(std::move(artworkDataSource)),
      shieldSize_(shieldSize),
      artworkCache_(std::move(artworkCache)),
      hash_((artworkDataSource_ ? hashOfAllFields(*artworkDataSource_) : 0) ^
            std::hash<std::int64_t>{}(shieldSize_)) {}

std::shared_ptr<const ui::Image> SizedTransitArtwork::image(double scale) const {
  if (!artworkDataSource_ || !artworkCache_) return nullptr;
  const double growth = ui::artworkGrowth(platform().interfaceSettings().textSizeCategory());
  return artworkCache_->image(*artworkDataSource_, {shieldSize_, scale, growth});
}

bool SizedTransitArtwork::isEqual(const Object& other) const {
  if (this == &other) return true;
  const auto* sized = dynamic_cast<const SizedTransitArtwork*>(&other);
  if (sized == nullptr || hash_ != sized->hash_) return false;
  if (shieldSize_ != sized->shieldSize_ || artworkCache_ != sized->artworkCache_) return false;
  if (artworkDataSource_ == sized->artworkDataSource_) return true;
  return artworkDataSource_ && sized->artworkDataSource_ && *artworkDataSource_ == *sized->artworkDataSource_;
}

std::string SizedTransitArtwork::description() const {
  const auto* shield = artworkDataSource_ && artworkDataSource_->shieldDataSource
                           ? &*artworkDataSource_->shieldDataSource
                           : nullptr;
  return "<" + classNameOf(*this) + " " + (shield ? shield->shieldText.value_or("") : "") + " size " +
         std::to_string(shieldSize_) + ">";
}

std::shared_ptr<const ui::Image> NamedImage::image(double /*scale*/) const {
  return platform().imageSource().imageNamed(name_);
}

bool NamedImage::isEqual(const Object& other) const {
  const auto* image = dynamic_cast<const NamedImage*>(&other);
  return image != nullptr && image->name_ == name_;
}

std::size_t NamedImage::hash() const { return std::hash<std::string>{}(name_); }

std::string NamedImage::description() const { return "<" + classNameOf(*this) + " " + name_ + ">"; }

}  // namespace linewatch
